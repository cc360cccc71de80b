#pragma once

#include <memory>
#include <optional>
#include <string>

#include "VelmoraCore/Event.h"
#include "VelmoraCore/Variant.h"

namespace Velmora {

// Reads the data of an event that anybody may have made: what is missing or of another kind is not
// there. Keeps the data, not the event.
class ValueReader {
 public:
  explicit ValueReader(const Event& event);

  std::shared_ptr<Variant> Value(const char* key) const;
  std::optional<std::string> Text(const char* key) const;
  std::optional<VariantMap> Map(const char* key) const;

 private:
  std::shared_ptr<const EventData> data_;
};

}  // namespace Velmora
