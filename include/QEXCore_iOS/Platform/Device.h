#pragma once

#include <string>

#include "QEXCore_iOS/Platform/Export.h"

namespace Platform {

// The device and its operating system. Safe from any thread; what cannot be told is an empty text.
class QEXCORE_API Device {
 public:
  virtual ~Device();

  // "Debian GNU/Linux", say.
  virtual std::string SystemName() const = 0;

  // "12.4", say.
  virtual std::string SystemVersion() const = 0;

  // What kind of device it is, in the maker's words for people.
  virtual std::string Model() const = 0;

  // The maker's identifier of the hardware model, as programs compare it.
  virtual std::string HardwareModel() const = 0;
};

}  // namespace Platform
