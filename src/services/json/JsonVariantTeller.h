#pragma once

#include <cstddef>
#include <vector>

#include "QEXCore_iOS/Platform/JsonSerialization.h"
#include "VelmoraCore/Variant.h"

namespace Velmora {

// Tells a visitor what ToNSDictionary or ToNSArray would make of variants: members that have no
// value on the platform (null, the empty string) are left out. Serves one call only.
class JsonVariantTeller {
 public:
  explicit JsonVariantTeller(Platform::JsonVisitor& visitor) : visitor_(visitor) {}

  // False when there is something that takes the conversion itself to decide: a text with a zero
  // byte, an empty key, an element without a value. The visitor has then heard a part.
  bool Tell(const VariantMap& map);
  bool Tell(const VariantVector& vector);

 private:
  // A container on the way down; one of the two.
  struct Level {
    const VariantMap* members = nullptr;
    VariantMap::const_iterator member;
    const VariantVector* elements = nullptr;
    std::size_t element = 0;
  };

  bool Run();
  bool Step();
  bool StepMember();
  bool StepElement();
  bool TellValue(const Variant& value);
  void Enter(const VariantMap& map);
  void Enter(const VariantVector& vector);

  Platform::JsonVisitor& visitor_;
  std::vector<Level> levels_;
};

}  // namespace Velmora
