#pragma once

#include <memory>

#include "QEXCore_iOS/Platform/UserDefaults.h"

// Moves what the previous generation of the SDK (v4) left in the user defaults into the data stores
// of this generation, once, and removes it there.
//
// Call it on one thread, before anything else reads or writes data stores. Failures are not
// reported: what cannot be read counts as missing, and a missing item arrives as an empty text, 0
// or false.
class QEXV4Migration {
 public:
  QEXV4Migration() = delete;

  // Where v4 left its values: the suite of the application group when a group is set, and null when
  // that suite cannot be opened; without a group, the application's own user defaults.
  static std::shared_ptr<Platform::UserDefaults> getV4Defaults();

  // True when the install date of v4 is there, whatever else is.
  static bool defaultsNeedToMigrate();

  // Does nothing, and logs nothing, unless there is something to migrate. A migration that was cut
  // short starts from the beginning at the next call.
  static void migrate();
};
