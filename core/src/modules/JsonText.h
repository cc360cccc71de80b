#pragma once

#include <optional>
#include <string>

#include "VelmoraCore/PlatformServicesInterface.h"
#include "VelmoraCore/Variant.h"

// JSON texts by way of the platform's service. Each failure gives one error line under `logTag`
// that begins with `subject`.
namespace Velmora::JsonText {

std::optional<std::string> Write(const PlatformServicesInterface& services, const VariantMap& map,
                                 const char* logTag, const char* subject);

// Nothing, without a log line, when the text is no JSON object or there is no service to read it.
std::optional<VariantMap> Read(const PlatformServicesInterface& services, const std::string& text);

}  // namespace Velmora::JsonText
