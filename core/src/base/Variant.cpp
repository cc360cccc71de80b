#include "VelmoraCore/Variant.h"

#include <cmath>
#include <cstddef>
#include <limits>
#include <type_traits>
#include <utility>
#include <variant>

#include "VelmoraCore/ErrorCodes.h"
#include "VelmoraCore/SdkError.h"

namespace Velmora {
namespace {

// So many containers are released inside one another on the stack, which is quick; the stack of
// the smallest thread has room for more.
constexpr int kMostNestedReleases = 64;
thread_local int nestedReleases = 0;

// Where the containers below those leave their own, so that nesting needs no more stack.
thread_local VariantVector* containersToRelease = nullptr;

bool IsContainer(const std::shared_ptr<Variant>& value) {
  return value != nullptr && (value->GetKind() == VariantKind::VariantVector ||
                              value->GetKind() == VariantKind::VariantMap);
}

std::shared_ptr<Variant>& ElementOf(std::shared_ptr<Variant>& element) { return element; }

std::shared_ptr<Variant>& ElementOf(VariantMap::value_type& element) { return element.second; }

template <class Container>
void MoveContainers(Container& from, VariantVector& to) {
  for (auto& element : from) {
    if (IsContainer(ElementOf(element))) {
      to.push_back(std::move(ElementOf(element)));
    }
  }
}

template <class Container>
void ReleaseElements(Container& container) {
  if (nestedReleases < kMostNestedReleases) {
    ++nestedReleases;
    container.clear();
    --nestedReleases;
    return;
  }
  if (containersToRelease != nullptr) {
    MoveContainers(container, *containersToRelease);
    return;
  }
  VariantVector pending;
  MoveContainers(container, pending);
  containersToRelease = &pending;
  while (!pending.empty()) {
    const std::shared_ptr<Variant> released = std::move(pending.back());
    pending.pop_back();
  }
  containersToRelease = nullptr;
}

const char* NameOf(VariantKind kind) {
  switch (kind) {
    case VariantKind::Null:
      return "null";
    case VariantKind::String:
      return "string";
    case VariantKind::Integer:
      return "integer";
    case VariantKind::Long:
      return "long";
    case VariantKind::Double:
      return "double";
    case VariantKind::Boolean:
      return "boolean";
    case VariantKind::VariantVector:
      return "vector";
    case VariantKind::VariantMap:
      return "map";
  }
  return "unknown";
}

[[noreturn]] void ThrowWrongKind(VariantKind kind, const char* wanted, int line) {
  throw SdkError(ErrorCodes::kVariantWrongKind,
                 std::string("a ") + NameOf(kind) + " was read as a " + wanted,
                 DebugInfo("src/base/Variant", line));
}

template <class Integer>
Integer IntegerFromDouble(double value) {
  constexpr Integer kLowest = std::numeric_limits<Integer>::min();
  constexpr Integer kHighest = std::numeric_limits<Integer>::max();
  // The lowest value is a power of two and its negative is one beyond the highest, so that both
  // bounds are exact as doubles.
  constexpr auto kLowerBound = static_cast<double>(kLowest);
  if (std::isnan(value)) {
    return 0;
  }
  if (value <= kLowerBound) {
    return kLowest;
  }
  if (value >= -kLowerBound) {
    return kHighest;
  }
  return static_cast<Integer>(value);
}

std::int32_t NarrowInteger(std::int64_t value) {
  if (value < std::numeric_limits<std::int32_t>::min()) {
    return std::numeric_limits<std::int32_t>::min();
  }
  if (value > std::numeric_limits<std::int32_t>::max()) {
    return std::numeric_limits<std::int32_t>::max();
  }
  return static_cast<std::int32_t>(value);
}

using PairsToCompare = std::vector<std::pair<const Variant*, const Variant*>>;

// Notes two elements for later. False when they differ because one of them is no value.
bool AddPair(const std::shared_ptr<Variant>& left, const std::shared_ptr<Variant>& right,
             PairsToCompare& pairs) {
  if (left == nullptr || right == nullptr) {
    return left == right;
  }
  if (left != right) {
    pairs.emplace_back(left.get(), right.get());
  }
  return true;
}

bool AddPairs(const VariantVector& left, const VariantVector& right, PairsToCompare& pairs) {
  if (left.size() != right.size()) {
    return false;
  }
  for (std::size_t index = 0; index < left.size(); ++index) {
    if (!AddPair(left[index], right[index], pairs)) {
      return false;
    }
  }
  return true;
}

bool AddPairs(const VariantMap& left, const VariantMap& right, PairsToCompare& pairs) {
  if (left.size() != right.size()) {
    return false;
  }
  auto other = right.begin();
  for (const auto& [key, value] : left) {
    if (key != other->first || !AddPair(value, other->second, pairs)) {
      return false;
    }
    ++other;
  }
  return true;
}

bool AreDoublesEqual(double left, double right) {
  return left == right || (std::isnan(left) && std::isnan(right));
}

// Compares what lies in the two variants themselves and notes their elements for later.
bool CompareShallow(const Variant& left, const Variant& right, PairsToCompare& pairs) {
  if (left.GetKind() != right.GetKind()) {
    return false;
  }
  switch (left.GetKind()) {
    case VariantKind::Null:
      return true;
    case VariantKind::String:
      return left.GetString() == right.GetString();
    case VariantKind::Integer:
    case VariantKind::Long:
      return left.GetLong() == right.GetLong();
    case VariantKind::Double:
      return AreDoublesEqual(left.GetDouble(), right.GetDouble());
    case VariantKind::Boolean:
      return left.GetBoolean() == right.GetBoolean();
    case VariantKind::VariantVector:
      return AddPairs(left.GetVariantVector(), right.GetVariantVector(), pairs);
    case VariantKind::VariantMap:
      return AddPairs(left.GetVariantMap(), right.GetVariantMap(), pairs);
  }
  return false;
}

}  // namespace

template <class T>
class Variant::Holding : public Variant {
 public:
  Holding(VariantKind kind, T&& value) : Variant(kind), value_(std::move(value)) {}
  ~Holding() {
    if constexpr (std::is_same_v<T, VariantVector> || std::is_same_v<T, VariantMap>) {
      ReleaseElements(value_);
    }
  }

  // The value of a variant whose kind is that of T.
  static const T& Of(const Variant& variant) { return static_cast<const Holding&>(variant).value_; }

 private:
  T value_;
};

std::shared_ptr<Variant> Variant::FromString(std::string text) {
  return std::make_shared<Holding<std::string>>(VariantKind::String, std::move(text));
}

std::shared_ptr<Variant> Variant::FromInteger(int value) {
  return std::make_shared<Holding<std::int32_t>>(VariantKind::Integer, std::int32_t{value});
}

std::shared_ptr<Variant> Variant::FromLong(long long value) {
  return std::make_shared<Holding<std::int64_t>>(VariantKind::Long, std::int64_t{value});
}

std::shared_ptr<Variant> Variant::FromDouble(double value) {
  return std::make_shared<Holding<double>>(VariantKind::Double, double{value});
}

std::shared_ptr<Variant> Variant::FromBoolean(bool value) {
  return std::make_shared<Holding<bool>>(VariantKind::Boolean, bool{value});
}

std::shared_ptr<Variant> Variant::FromNull() {
  return std::make_shared<Holding<std::monostate>>(VariantKind::Null, std::monostate());
}

std::shared_ptr<Variant> Variant::FromVariantVector(VariantVector values) {
  return std::make_shared<Holding<VariantVector>>(VariantKind::VariantVector, std::move(values));
}

std::shared_ptr<Variant> Variant::FromVariantMap(VariantMap values) {
  return std::make_shared<Holding<VariantMap>>(VariantKind::VariantMap, std::move(values));
}

bool Variant::IsNumericKind() const {
  return kind_ == VariantKind::Integer || kind_ == VariantKind::Long ||
         kind_ == VariantKind::Double;
}

const std::string& Variant::GetString() const {
  if (kind_ != VariantKind::String) ThrowWrongKind(kind_, "string", __LINE__);
  return Holding<std::string>::Of(*this);
}

std::int32_t Variant::GetInteger() const {
  switch (kind_) {
    case VariantKind::Integer:
      return Holding<std::int32_t>::Of(*this);
    case VariantKind::Long:
      return NarrowInteger(Holding<std::int64_t>::Of(*this));
    case VariantKind::Double:
      return IntegerFromDouble<std::int32_t>(Holding<double>::Of(*this));
    default:
      ThrowWrongKind(kind_, "number", __LINE__);
  }
}

std::int64_t Variant::GetLong() const {
  switch (kind_) {
    case VariantKind::Integer:
      return Holding<std::int32_t>::Of(*this);
    case VariantKind::Long:
      return Holding<std::int64_t>::Of(*this);
    case VariantKind::Double:
      return IntegerFromDouble<std::int64_t>(Holding<double>::Of(*this));
    default:
      ThrowWrongKind(kind_, "number", __LINE__);
  }
}

double Variant::GetDouble() const {
  switch (kind_) {
    case VariantKind::Integer:
      return Holding<std::int32_t>::Of(*this);
    case VariantKind::Long:
      return static_cast<double>(Holding<std::int64_t>::Of(*this));
    case VariantKind::Double:
      return Holding<double>::Of(*this);
    default:
      ThrowWrongKind(kind_, "number", __LINE__);
  }
}

bool Variant::GetBoolean() const {
  if (kind_ != VariantKind::Boolean) ThrowWrongKind(kind_, "boolean", __LINE__);
  return Holding<bool>::Of(*this);
}

const VariantVector& Variant::GetVariantVector() const {
  if (kind_ != VariantKind::VariantVector) ThrowWrongKind(kind_, "vector", __LINE__);
  return Holding<VariantVector>::Of(*this);
}

const VariantMap& Variant::GetVariantMap() const {
  if (kind_ != VariantKind::VariantMap) ThrowWrongKind(kind_, "map", __LINE__);
  return Holding<VariantMap>::Of(*this);
}

bool Variant::AreEqual(const std::shared_ptr<Variant>& left,
                       const std::shared_ptr<Variant>& right) {
  PairsToCompare pairs;
  if (!AddPair(left, right, pairs)) {
    return false;
  }
  while (!pairs.empty()) {
    const auto [leftValue, rightValue] = pairs.back();
    pairs.pop_back();
    if (!CompareShallow(*leftValue, *rightValue, pairs)) {
      return false;
    }
  }
  return true;
}

}  // namespace Velmora
