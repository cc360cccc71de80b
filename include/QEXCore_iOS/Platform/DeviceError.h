#pragma once

#include <stdexcept>

#include "QEXCore_iOS/Platform/Export.h"

namespace Platform {

// Thrown by a port when the device itself fails: a disk that cannot be read, a database that
// cannot be opened. A missing item or a bad argument is no device failure; ports report those by
// their results. The message is UTF-8, for people, and says what was tried and why it failed.
class QEXCORE_API DeviceError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
  ~DeviceError() override;
};

}  // namespace Platform
