#pragma once

#include <memory>
#include <string>
#include <vector>

#include "QEXCore_iOS/Platform/Export.h"
#include "QEXCore_iOS/Platform/Value.h"

namespace Platform {

// A persistent set of named values: the preferences of an application, or those of a group of
// applications (a suite).
//
// Safe from any thread, and from several processes at once: a read sees the newest write that any
// of them was told is done. Keys are UTF-8 and may be empty. Nothing here throws: a failing device
// makes a read find nothing and a write change nothing, with one line on the system log.
class QEXCORE_API UserDefaults {
 public:
  // How many containers deep a value may nest.
  static constexpr int kMaximumDepth = 1024;

  virtual ~UserDefaults();

  // The value under `key`, with the number type it was stored with; absent when there is none.
  virtual Value ObjectForKey(const std::string& key) const = 0;

  // Stores a string, number, boolean, data, date, or an array or dictionary (with string keys) of
  // these. An absent value removes the key. Any other kind of value, one that nests too deep and
  // one that is too large for the device are refused: the key keeps what it had, and one line on
  // the system log says why.
  virtual void SetObject(const std::string& key, const Value& value) = 0;

  // Removes the key; a key that is not there changes nothing.
  virtual void RemoveObject(const std::string& key) = 0;

  // Removes every key that begins with `prefix`, all keys for an empty one: all of them or, when
  // the device fails, none.
  virtual void RemoveObjectsWithPrefix(const std::string& prefix) = 0;

  // Every key that begins with `prefix`, in byte order; all keys for an empty prefix.
  virtual std::vector<std::string> KeysWithPrefix(const std::string& prefix) const = 0;
};

// Opens user defaults. Safe from any thread.
class QEXCORE_API UserDefaultsProvider {
 public:
  virtual ~UserDefaultsProvider();

  // The application's own user defaults; never null, and the same object on every call.
  virtual std::shared_ptr<UserDefaults> Standard() = 0;

  // False where the platform knows no suites; then OpenSuite gives null.
  virtual bool SupportsSuites() const = 0;

  // The user defaults shared under `name`; null when a suite of that name cannot be made.
  virtual std::shared_ptr<UserDefaults> OpenSuite(const std::string& name) = 0;
};

}  // namespace Platform
