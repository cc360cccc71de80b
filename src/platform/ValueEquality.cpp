#include <cmath>
#include <span>
#include <vector>

#include "platform/ValueInternals.h"

namespace Platform {
namespace {

bool IsContainer(const Value& value) { return value.IsArray() || value.IsDictionary(); }

bool IntegerEqualsReal(std::int64_t integer, double real) {
  constexpr double limit = 9223372036854775808.0;
  if (!(real >= -limit && real < limit) || std::trunc(real) != real) return false;
  return static_cast<std::int64_t>(real) == integer;
}

bool RealsAreEqual(double left, double right) {
  return left == right || (std::isnan(left) && std::isnan(right));
}

bool NumbersAreEqual(const Value& left, const Value& right) {
  using Inside = ValueInternals;
  if (Inside::IsReal(left)) {
    return Inside::IsReal(right)
               ? RealsAreEqual(Inside::RealOf(left), Inside::RealOf(right))
               : IntegerEqualsReal(Inside::IntegerOf(right), Inside::RealOf(left));
  }
  return Inside::IsReal(right) ? IntegerEqualsReal(Inside::IntegerOf(left), Inside::RealOf(right))
                               : Inside::IntegerOf(left) == Inside::IntegerOf(right);
}

// Compares two values of one kind that are no containers.
bool ScalarsAreEqual(const Value& left, const Value& right) {
  switch (left.Kind()) {
    case ValueKind::String:
      return ValueInternals::TextOf(left) == ValueInternals::TextOf(right);
    case ValueKind::Number:
      return NumbersAreEqual(left, right);
    case ValueKind::Boolean:
      return left.AsBool() == right.AsBool();
    case ValueKind::Data:
      return left.AsData() == right.AsData();
    case ValueKind::Object:
      return left.AsObject()->Equals(*right.AsObject());
    default:
      return true;
  }
}

const ValueDictionary& ContentOf(const Value& dictionary) {
  return ValueInternals::As<ValueInternals::Dictionary>(dictionary).content;
}

// Compares two values with a stack of its own: one frame for each pair of containers that has been
// begun. Dictionary keys may be containers too, so that even finding the partner of a key descends.
class Comparison {
 public:
  bool AreEqual(const Value& left, const Value& right) {
    Outcome outcome = Begin(left, right);
    while (!frames_.empty()) {
      outcome = frames_.back().left->IsArray() ? ResumeArray(outcome) : ResumeDictionary(outcome);
      if (outcome == Outcome::EndedEqual || outcome == Outcome::EndedDifferent) {
        frames_.pop_back();
        outcome = outcome == Outcome::EndedEqual ? Outcome::Equal : Outcome::Different;
      }
    }
    return outcome == Outcome::Equal;
  }

 private:
  enum class Outcome {
    Equal,           // the pair just compared
    Different,       //
    Begun,           // a new frame will tell
    EndedEqual,      // the uppermost frame is done
    EndedDifferent,  //
  };

  enum class Awaited { Nothing, Key, Value };

  struct Frame {
    const Value* left;
    const Value* right;
    std::size_t position = 0;   // of the left element or slot to be compared
    std::size_t candidate = 0;  // the right slot whose key may be the partner of the left one's
    Awaited awaited = Awaited::Nothing;
  };

  Outcome Begin(const Value& left, const Value& right) {
    if (left.Kind() != right.Kind()) return Outcome::Different;
    if (!IsContainer(left)) {
      return ScalarsAreEqual(left, right) ? Outcome::Equal : Outcome::Different;
    }
    if (left.Count() != right.Count()) return Outcome::Different;
    const bool sameStorage = ValueInternals::StorageOf(left) == ValueInternals::StorageOf(right);
    if (sameStorage || left.Count() == 0) return Outcome::Equal;
    frames_.push_back({&left, &right});
    return Outcome::Begun;
  }

  Outcome ResumeArray(Outcome previous) {
    Frame& frame = frames_.back();
    if (previous == Outcome::Different) return Outcome::EndedDifferent;
    const std::span<const Value> items = frame.left->Items();
    if (frame.position == items.size()) return Outcome::EndedEqual;
    const std::size_t position = frame.position++;
    return Begin(items[position], frame.right->Items()[position]);
  }

  Outcome ResumeDictionary(Outcome previous) {
    Frame& frame = frames_.back();
    const auto slots = ContentOf(*frame.left).Slots();
    if (frame.awaited == Awaited::Key) {
      if (previous == Outcome::Equal) return CompareWithCandidate(frame, slots[frame.position]);
      ++frame.candidate;
      return TryNextCandidate(frame, slots[frame.position]);
    }
    if (frame.awaited == Awaited::Value) {
      if (previous == Outcome::Different) return Outcome::EndedDifferent;
      ++frame.position;
    }
    while (frame.position < slots.size() && slots[frame.position].key.IsAbsent()) ++frame.position;
    if (frame.position == slots.size()) return Outcome::EndedEqual;
    return BeginEntry(frame, slots[frame.position]);
  }

  Outcome BeginEntry(Frame& frame, const DictionaryEntry& entry) {
    frame.candidate = 0;
    if (IsContainer(entry.key)) return TryNextCandidate(frame, entry);
    const Value* partner = ContentOf(*frame.right).Find(entry.key);
    if (partner == nullptr) return Outcome::EndedDifferent;
    frame.awaited = Awaited::Value;
    return Begin(entry.value, *partner);
  }

  Outcome TryNextCandidate(Frame& frame, const DictionaryEntry& entry) {
    const auto slots = ContentOf(*frame.right).Slots();
    const auto mayBePartner = [&entry](const Value& key) {
      return key.Kind() == entry.key.Kind() && key.Count() == entry.key.Count();
    };
    while (frame.candidate < slots.size() && !mayBePartner(slots[frame.candidate].key)) {
      ++frame.candidate;
    }
    if (frame.candidate == slots.size()) return Outcome::EndedDifferent;
    frame.awaited = Awaited::Key;
    return Begin(entry.key, slots[frame.candidate].key);
  }

  Outcome CompareWithCandidate(Frame& frame, const DictionaryEntry& entry) {
    frame.awaited = Awaited::Value;
    return Begin(entry.value, ContentOf(*frame.right).Slots()[frame.candidate].value);
  }

  std::vector<Frame> frames_;
};

}  // namespace

bool Value::Equals(const Value& other) const { return Comparison().AreEqual(*this, other); }

}  // namespace Platform
