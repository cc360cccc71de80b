#pragma once

#include <map>
#include <optional>
#include <string>

// A directory with all that is below it: paths relative to it, each with the contents of the file,
// or with nothing for a directory.
using Tree = std::map<std::string, std::optional<std::string>>;

// Empty when there is no such directory.
Tree ReadTree(const std::string& directory);

// The paths at which the two differ, one a line; empty when they are equal.
std::string DifferenceOf(const Tree& one, const Tree& other);

// Files of many sizes and kinds, names of many sorts, and an empty directory.
void MakeVariedTree(const std::string& directory);

// Bytes that hardly get smaller.
std::string RandomBytes(std::size_t count);
