#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "VelmoraCore/Export.h"

namespace Velmora {

enum class VariantKind : std::int32_t {
  Null = 0,
  String = 1,
  Integer = 2,  // 32 bits
  Long = 3,     // 64 bits
  Double = 4,
  Boolean = 5,
  VariantVector = 6,
  VariantMap = 7,
};

class Variant;
using VariantVector = std::vector<std::shared_ptr<Variant>>;
using VariantMap = std::map<std::string, std::shared_ptr<Variant>>;
using StringMap = std::map<std::string, std::string>;

// The core's dynamic value. Held through a shared pointer; an empty pointer is "no value", which
// is not the same as a variant of null kind. Containers may hold empty pointers.
//
// A variant never changes once made, so it may be read on any number of threads. Destruction and
// comparison use no stack for nesting, however deep.
class VELMORA_CORE_API Variant {
 public:
  // `text` is UTF-8 and may hold zero bytes.
  static std::shared_ptr<Variant> FromString(std::string text);
  static std::shared_ptr<Variant> FromInteger(int value);
  static std::shared_ptr<Variant> FromLong(long long value);
  static std::shared_ptr<Variant> FromDouble(double value);
  static std::shared_ptr<Variant> FromBoolean(bool value);
  static std::shared_ptr<Variant> FromNull();
  static std::shared_ptr<Variant> FromVariantVector(VariantVector values);
  static std::shared_ptr<Variant> FromVariantMap(VariantMap values);

  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;

  VariantKind GetKind() const { return kind_; }

  // True for the kinds Integer, Long and Double.
  bool IsNumericKind() const;

  // The getters throw an SdkError with the code "variant.wrong_kind" when the kind does not fit.
  //
  // Every numeric kind can be read in every numeric width: a double loses its fraction (toward
  // zero), a value beyond the width asked for becomes that width's nearest extreme, not-a-number
  // becomes 0, and a 64-bit integer read as a double is rounded to the nearest one.
  const std::string& GetString() const;
  std::int32_t GetInteger() const;
  std::int64_t GetLong() const;
  double GetDouble() const;
  bool GetBoolean() const;
  const VariantVector& GetVariantVector() const;
  const VariantMap& GetVariantMap() const;

  // True when kinds and values are equal, element by element. Numbers of different kinds differ;
  // two not-a-number doubles are equal; two empty pointers are equal.
  static bool AreEqual(const std::shared_ptr<Variant>& left, const std::shared_ptr<Variant>& right);

 private:
  // A variant with its value, which takes no more room than it needs.
  template <class T>
  class Holding;

  explicit Variant(VariantKind kind) : kind_(kind) {}
  ~Variant() = default;

  const VariantKind kind_;
};

}  // namespace Velmora
