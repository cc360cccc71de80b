#pragma once

#include <string>
#include <string_view>

#include "QEXCore_iOS/Platform/Error.h"

namespace Platform {

inline constexpr const char* kFileErrorDomain = "platform.files";

// `Cannot <action> "<path>": <reason>.`, as UTF-8 on one line: bytes of the path that are no
// printable UTF-8 are shown as \xNN, and a path longer than the system takes is cut.
std::string DescribeFileFailure(std::string_view action, std::string_view path,
                                std::string_view reason);

// The system's own words for an errno value, not translated.
std::string_view ReasonOf(int errorNumber);

// Writes an error of the domain kFileErrorDomain with `errorNumber` as its code, unless `error` is
// null. The reason is that of the number unless given.
void WriteFileError(Error* error, std::string_view action, std::string_view path, int errorNumber,
                    std::string_view reason = {});

}  // namespace Platform
