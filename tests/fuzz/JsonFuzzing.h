#pragma once

#include <string>
#include <string_view>

// What must hold for any bytes that are taken for JSON. Each function gives an empty text when it
// does, else what does not.
namespace JsonFuzzing {

// A JSON object from the text: its error is the one that is promised, its getters agree, and what
// it prints reads back as what prints the same.
std::string CheckObject(std::string_view text);

// The same for an array.
std::string CheckArray(std::string_view text);

// Reading into variants agrees with reading a value and converting it, in its result and in its
// errors, and a value reads back from what is written of it.
std::string CheckPaths(std::string_view text);

}  // namespace JsonFuzzing
