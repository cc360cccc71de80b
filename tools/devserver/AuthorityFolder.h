#pragma once

#include <filesystem>

#include "Certificates.h"

namespace DevServer {

// The development server's certificate authority, kept in a folder of the user's so that it has to
// be trusted only once.
struct AuthorityFolder {
  // The authority of the folder: the one that is there, or a new one, with the folder. Throws
  // std::runtime_error when it can be neither read nor written.
  explicit AuthorityFolder(const std::filesystem::path& folder);

  std::filesystem::path certificateFile;
  Identity authority;
};

// "<user's cache directory>/qexcore-devserver".
std::filesystem::path DefaultAuthorityFolder();

}  // namespace DevServer
