#pragma once

#include <optional>
#include <string>

#include "QEXCore_iOS/Platform/Device.h"

namespace Platform {

// The machine as the kernel's DMI table or device tree names it, and the system as os-release
// does. Texts that board makers left at their defaults, hold control characters or are no UTF-8
// count as missing. Everything is read afresh on each call.
class LinuxDevice final : public Device {
 public:
  // Reads /etc, /usr, /sys and /proc below `root` instead of those of the running system.
  explicit LinuxDevice(std::string root = "");

  // "Linux" when os-release does not say.
  std::string SystemName() const override;

  // Empty where versions are not counted, as in rolling distributions.
  std::string SystemVersion() const override;

  // The product family or, failing that, the product name; "Linux device" when unknown.
  std::string Model() const override;

  // "<product name>,<machine>", the most specific compatible name of the device tree, or the
  // machine alone ("x86_64").
  std::string HardwareModel() const override;

 private:
  std::string OsReleaseValue(const std::string& key) const;
  std::optional<std::string> DmiText(const std::string& name) const;
  std::optional<std::string> DeviceTreeText(const std::string& name) const;

  std::string root_;
};

}  // namespace Platform
