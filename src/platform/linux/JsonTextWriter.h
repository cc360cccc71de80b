#pragma once

#include <functional>
#include <optional>
#include <string>

#include "QEXCore_iOS/Platform/JsonSerialization.h"

namespace Platform {

// The JSON text of the one container that `tell` describes to its visitor. Nothing on failure, and
// then `problem` says for people what cannot be written. What `tell` throws passes through.
std::optional<std::string> WriteJsonText(const std::function<void(JsonVisitor&)>& tell,
                                         JsonLayout layout, std::string& problem);

}  // namespace Platform
