#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "QEXCore_iOS/Platform/JsonSerialization.h"

namespace Platform {

// Feeds a JSON text to `visitor`; nothing when all of it was heard, else what is wrong with the
// text, for people. The visitor may then have heard a part. Each thread keeps a parser between its
// calls, and the visitor may itself read JSON.
std::optional<std::string> ReadJsonText(std::string_view text, JsonVisitor& visitor);

// Lets what is made from now on still read JSON in its destructor when the process ends. simdjson
// otherwise makes what it needs when first used, and so loses it early.
void PrepareJsonReader();

}  // namespace Platform
