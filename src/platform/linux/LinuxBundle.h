#pragma once

#include <mutex>
#include <string>

#include "QEXCore_iOS/Platform/Bundle.h"

namespace Platform {

// A program with its Info.plist and its resources in one folder: the program's own, or
// ../share/<program's name> seen from there.
//
// The folder is the first of the two that holds an Info.plist; where neither does, the second if
// it exists, else the first. Info.plist, XML or binary and at most 1 MiB, is read at the first
// question and never again; one that cannot be used counts as missing.
class LinuxBundle final : public Bundle {
 public:
  // The bundle of the running program.
  LinuxBundle();

  // The bundle of the program at this path.
  explicit LinuxBundle(std::string executablePath);

  // A program whose Info.plist and resources lie in `folder`.
  LinuxBundle(std::string executablePath, std::string folder);

  std::string BundlePath() const override;
  std::string ExecutablePath() const override;
  Value ObjectForInfoDictionaryKey(const std::string& key) const override;

  // `name` may lead into folders ("help/index.html"). A symbolic link that points out of the
  // folder finds nothing.
  std::string PathForResource(const std::string& name) const override;

 private:
  const std::string executablePath_;
  const std::string folder_;
  mutable std::once_flag infoRead_;
  mutable Value info_;
};

}  // namespace Platform
