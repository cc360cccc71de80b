#pragma once

namespace Velmora {

// The tag of every line that the remote file manager logs, its blank included.
inline constexpr const char* kRemoteFileLogTag = "RemoteFileManager: ";

}  // namespace Velmora
