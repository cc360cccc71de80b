#pragma once

#include <string>

#include "QEXCore_iOS/Platform/Export.h"
#include "QEXCore_iOS/Platform/Value.h"

namespace Platform {

// The running application's own files: its information dictionary and its packaged resources.
// Safe from any thread. Nothing here throws.
class QEXCORE_API Bundle {
 public:
  virtual ~Bundle();

  // The folder that the application was installed in; empty when it cannot be told.
  virtual std::string BundlePath() const = 0;

  // The absolute path of the running program.
  virtual std::string ExecutablePath() const = 0;

  // The information dictionary's value under `key`; absent when the key or the dictionary is
  // missing, or the dictionary cannot be read.
  virtual Value ObjectForInfoDictionaryKey(const std::string& key) const = 0;

  // The path of the packaged file of exactly that name; empty when there is none. A name that
  // would lead out of the folder of resources finds nothing.
  virtual std::string PathForResource(const std::string& name) const = 0;
};

}  // namespace Platform
