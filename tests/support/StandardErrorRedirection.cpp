#include "support/StandardErrorRedirection.h"

#include <fcntl.h>
#include <unistd.h>

namespace TestSupport {

StandardErrorRedirection::StandardErrorRedirection(int descriptor)
    : former_(::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1)) {
  if (descriptor >= 0) {
    ::dup2(descriptor, STDERR_FILENO);
  } else {
    ::close(STDERR_FILENO);
  }
}

StandardErrorRedirection::~StandardErrorRedirection() {
  ::dup2(former_, STDERR_FILENO);
  ::close(former_);
}

StandardErrorCapture::StandardErrorCapture()
    : file_(::open(folder_.PathOf("stderr").c_str(),
                   O_WRONLY | O_CREAT | O_EXCL | O_APPEND | O_CLOEXEC, 0600)),
      redirection_(file_) {}

StandardErrorCapture::~StandardErrorCapture() { ::close(file_); }

std::string StandardErrorCapture::Text() const { return ReadFileBytes(folder_.PathOf("stderr")); }

}  // namespace TestSupport
