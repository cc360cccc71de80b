#pragma once

#include <string>
#include <string_view>

namespace Platform {

// Why a text was refused, as far as the reader knows.
enum class JsonRefusal { Other, Number, ScalarRoot, TooLarge, NoMemory };

// Says, for people, what is wrong with a text that the reader has refused, with the line and the
// column (counted from 1, in bytes) where that can be told.
std::string DescribeJsonFault(std::string_view text, JsonRefusal refusal);

}  // namespace Platform
