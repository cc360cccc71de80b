#pragma once

#include <string_view>

namespace Platform {

// True when `bytes` are a binary property list that may be handed to a parser which trusts its
// input more than we do: every offset and length lies inside, nothing refers to itself or nests
// deeper than `maximumDepth`, and the tree that it unfolds to is small. (An object may be referred
// to many times and is copied each time, so that a few hundred bytes can spell gigabytes.)
bool IsHarmlessBinaryPropertyList(std::string_view bytes, int maximumDepth);

}  // namespace Platform
