#pragma once

#include <string>
#include <string_view>

// Paths as texts, with "/" between their components. Nothing here looks at the disk.
namespace Velmora::PathText {

// `path` with `component` behind it and one "/" between them. Runs of "/" become one, and none is
// left at the end. An empty component adds nothing.
std::string Append(std::string_view path, std::string_view component);

// The folded path of `name`, seen from `path`.
std::string Below(std::string_view path, std::string_view name);

// Folds "." and ".." components and runs of "/". ".." at the root is dropped, ".." at the start of
// a relative path stays; a relative path of which nothing is left becomes ".". Links are not known
// here: "a/.." is always ".".
std::string Standardize(std::string_view path);

}  // namespace Velmora::PathText
