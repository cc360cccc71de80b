#pragma once

#include <optional>
#include <string>

#include "QEXCore_iOS/Platform/Value.h"

namespace Velmora {

// Picks the SDK's own entries out of what the application was launched with, or out of the user
// information of a notification that was opened. Belongs to one thread.
class DataMarshaller {
 public:
  DataMarshaller();

  // True for an absent text and for one of nothing but white space and line breaks.
  static bool isEmpty(const std::optional<std::string>& value);

  // Takes over, unchanged, each entry of ours whose text is not empty; what is no text, and every
  // other entry, is passed by. `info` may be absent.
  void marshalLaunchInfo(const Platform::Value& info);

  // A dictionary of what was taken over: texts under the keys that the core knows them by.
  const Platform::Value& getLaunchData() const;

 private:
  Platform::Value launchData_;
};

}  // namespace Velmora
