#include "AuthorityFolder.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

namespace DevServer {
namespace {

namespace fs = std::filesystem;

std::string ReadFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// Whole or not at all, and readable by its owner alone.
void WriteFile(const fs::path& path, const std::string& text) {
  const fs::path draft = path.string() + "." + std::to_string(::getpid());
  const mode_t former = ::umask(S_IRWXG | S_IRWXO);
  std::ofstream file(draft, std::ios::binary | std::ios::trunc);
  ::umask(former);
  file << text << std::flush;
  if (!file) throw std::runtime_error("cannot write " + draft.string());
  fs::rename(draft, path);
}

}  // namespace

AuthorityFolder::AuthorityFolder(const fs::path& folder)
    : certificateFile(folder / "authority.pem") {
  const fs::path keyFile = folder / "authority.key";
  authority = {ReadFile(keyFile), ReadFile(certificateFile)};
  if (!authority.key.empty() && !authority.certificate.empty()) return;
  fs::create_directories(folder);
  authority = MakeAuthority("QEXCore development server");
  WriteFile(keyFile, authority.key);
  WriteFile(certificateFile, authority.certificate);
}

fs::path DefaultAuthorityFolder() {
  constexpr const char* kName = "qexcore-devserver";
  if (const char* cache = std::getenv("XDG_CACHE_HOME"); cache != nullptr && *cache == '/') {
    return fs::path(cache) / kName;
  }
  const char* home = std::getenv("HOME");
  return fs::path(home != nullptr && *home == '/' ? home : "/tmp") / ".cache" / kName;
}

}  // namespace DevServer
