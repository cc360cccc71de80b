#pragma once

#include <map>
#include <string>

namespace Platform {

// The operating system's description of itself under `root` ("" for the running system's):
// etc/os-release, or usr/lib/os-release where the first is missing. Empty when there is neither.
//
// Values come unquoted as a shell would and are plain text (see PlainText); lines that are no
// assignment, or give no such value, are left out. Files beyond 64 KiB count as missing. Safe from
// any thread.
std::map<std::string, std::string> ReadOsRelease(const std::string& root);

}  // namespace Platform
