#pragma once

#include <vector>

#include "QEXCore_iOS/Platform/JsonSerialization.h"
#include "VelmoraCore/Variant.h"

namespace Velmora {

// Tells a visitor what ToNSDictionary or ToNSArray would make of variants: members that have no
// value on the platform (null, the empty string) are left out. Serves one call only.
class JsonVariantTeller {
 public:
  explicit JsonVariantTeller(Platform::JsonVisitor& visitor);

  // False when there is something that takes the conversion itself to decide: an empty key, an
  // element without a value, a member left out whose key has a zero byte. The visitor has then
  // heard a part. Other texts with a zero byte are told as they are; the caller must look for them
  // in what the visitor made.
  bool Tell(const VariantMap& map);
  bool Tell(const VariantVector& vector);

 private:
  // A container on the way down; one of the two.
  struct Level {
    const VariantMap* members = nullptr;
    VariantMap::const_iterator member;
    const VariantVector* elements = nullptr;
    VariantVector::const_iterator element;
  };

  bool Run();

  // Tell what is left of the innermost container: up to the next container in it, which is entered,
  // or to its end.
  bool TellMembers();
  bool TellElements();

  void TellScalar(const Variant& value);
  void EnterValue(const Variant& container);
  void Enter(const VariantMap& map);
  void Enter(const VariantVector& vector);

  Platform::JsonVisitor& visitor_;
  std::vector<Level> levels_;
};

}  // namespace Velmora
