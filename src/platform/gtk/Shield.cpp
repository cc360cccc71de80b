#include "platform/gtk/Shield.h"

#include <exception>
#include <string>

#include "QEXCore_iOS/Platform/Host.h"

namespace Platform {
namespace {

void Write(const std::string& line) noexcept {
  try {
    Host::Current()->systemLog->Write(line);
  } catch (...) {
    // There is nowhere else to say it.
  }
}

}  // namespace

void Shield(const std::function<void()>& work) noexcept {
  try {
    work();
  } catch (const std::exception& error) {
    Write(std::string("What the screen called for threw: ") + error.what());
  } catch (...) {
    Write("What the screen called for threw something that is no exception.");
  }
}

}  // namespace Platform
