#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "QEXCore_iOS/Platform/Value.h"

// Bytes as hexadecimal text, in the forms in which servers know them. Every function may be called
// on any thread.
namespace Velmora {

// The bytes that the pairs of characters stand for, up to the first zero byte; an odd character at
// the end is ignored. Each pair is read as std::stoul reads it in base 16, blanks, signs and early
// ends included; a pair without any digit throws std::invalid_argument.
std::vector<std::uint8_t> HexToBin(const char* characters, std::size_t length);

// Upper-case digits. Only the first byte is padded to two of them: {0x0A, 0x0B} gives "0AB". Push
// tokens and cached entity tags have always been written so and are compared as text.
std::string BinToHex(const unsigned char* bytes, std::size_t length);

// BinToHex of a byte buffer; absent when it is empty, or when the value is no byte buffer.
std::optional<std::string> ToHexFromEncodedData(const Platform::Value& buffer);

}  // namespace Velmora
