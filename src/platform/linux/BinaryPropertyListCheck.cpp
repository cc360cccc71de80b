#include "platform/linux/BinaryPropertyListCheck.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace Platform {
namespace {

constexpr std::string_view kMagic = "bplist00";
constexpr std::size_t kTrailerSize = 32;
constexpr std::uint64_t kMaximumObjects = 65'536;   // in the unfolded tree
constexpr std::uint64_t kMaximumBytes = 4'194'304;  // of texts and data in the unfolded tree

// The high half of the byte that each object begins with.
enum class Marker : std::uint8_t {
  Simple = 0x0,  // null, booleans
  Integer = 0x1,
  Real = 0x2,
  Date = 0x3,
  Data = 0x4,
  Ascii = 0x5,
  Utf16 = 0x6,
  Uid = 0x8,
  Array = 0xA,
  Dictionary = 0xD,
};

class Checker {
 public:
  Checker(std::string_view bytes, int maximumDepth) : bytes_(bytes), maximumDepth_(maximumDepth) {}

  bool Check() { return ReadTrailer() && Unfold(); }

 private:
  struct Visit {
    std::uint64_t object;
    int depth;
  };

  // What stands behind an object's first byte.
  struct Body {
    std::uint64_t count;
    std::uint64_t offset;
  };

  std::uint8_t ByteAt(std::uint64_t offset) const {
    return static_cast<std::uint8_t>(bytes_[static_cast<std::size_t>(offset)]);
  }

  // The big-endian number of `width` bytes (at most 8) at `offset`; both must lie inside.
  std::uint64_t NumberAt(std::uint64_t offset, std::uint64_t width) const {
    std::uint64_t number = 0;
    for (std::uint64_t i = 0; i < width; ++i) number = number << 8 | ByteAt(offset + i);
    return number;
  }

  bool ReadTrailer() {
    if (bytes_.size() < kMagic.size() + kTrailerSize || !bytes_.starts_with(kMagic)) return false;
    const std::uint64_t trailer = bytes_.size() - kTrailerSize;
    offsetWidth_ = ByteAt(trailer + 6);
    referenceWidth_ = ByteAt(trailer + 7);
    objectCount_ = NumberAt(trailer + 8, 8);
    root_ = NumberAt(trailer + 16, 8);
    offsetTable_ = NumberAt(trailer + 24, 8);
    return offsetWidth_ >= 1 && offsetWidth_ <= 8 && referenceWidth_ >= 1 && referenceWidth_ <= 8 &&
           offsetTable_ > kMagic.size() && offsetTable_ <= trailer &&
           objectCount_ <= (trailer - offsetTable_) / offsetWidth_ && root_ < objectCount_;
  }

  // Walks the tree as the parser will, and stops where it grows too large or too deep. An object
  // that contains itself is too deep.
  bool Unfold() {
    toVisit_ = {{root_, 1}};
    while (!toVisit_.empty()) {
      const Visit visit = toVisit_.back();
      toVisit_.pop_back();
      if (visit.depth > maximumDepth_ || ++objects_ > kMaximumObjects) return false;
      if (!CheckObject(visit)) return false;
    }
    return true;
  }

  bool CheckObject(const Visit& visit) {
    const std::uint64_t start = NumberAt(offsetTable_ + visit.object * offsetWidth_, offsetWidth_);
    if (start < kMagic.size() || start >= offsetTable_) return false;
    const auto marker = static_cast<Marker>(ByteAt(start) >> 4);
    const std::uint64_t low = ByteAt(start) & 0x0FU;
    switch (marker) {
      case Marker::Simple:
        return true;
      case Marker::Integer:
        return low <= 4 && IsInside(start + 1, std::uint64_t{1} << low);
      case Marker::Real:
        return (low == 2 || low == 3) && IsInside(start + 1, std::uint64_t{1} << low);
      case Marker::Date:
        return low == 3 && IsInside(start + 1, 8);
      case Marker::Uid:
        return low < 8 && IsInside(start + 1, low + 1);
      case Marker::Data:
      case Marker::Ascii:
        return CheckBytes(ReadBody(start), 1);
      case Marker::Utf16:
        return CheckBytes(ReadBody(start), 2);
      case Marker::Array:
        return CheckReferences(ReadBody(start), 1, visit.depth);
      case Marker::Dictionary:
        return CheckReferences(ReadBody(start), 2, visit.depth);
    }
    return false;
  }

  // Objects lie before the table of their offsets.
  bool IsInside(std::uint64_t offset, std::uint64_t length) const {
    return offset <= offsetTable_ && length <= offsetTable_ - offset;
  }

  // The count stands in the marker, or, for 15, in an integer object behind it.
  std::optional<Body> ReadBody(std::uint64_t start) const {
    const std::uint64_t low = ByteAt(start) & 0x0FU;
    if (low != 0x0F) return Body{low, start + 1};
    if (!IsInside(start + 1, 1)) return std::nullopt;
    const std::uint8_t integer = ByteAt(start + 1);
    const std::uint64_t width = std::uint64_t{1} << (integer & 0x0FU);
    const bool isInteger = static_cast<Marker>(integer >> 4) == Marker::Integer && width <= 8;
    if (!isInteger || !IsInside(start + 2, width)) return std::nullopt;
    return Body{NumberAt(start + 2, width), start + 2 + width};
  }

  bool CheckBytes(const std::optional<Body>& body, std::uint64_t unit) {
    if (!body || body->count > bytes_.size() || !IsInside(body->offset, body->count * unit)) {
      return false;
    }
    unfoldedBytes_ += body->count * unit;
    return unfoldedBytes_ <= kMaximumBytes;
  }

  bool CheckReferences(const std::optional<Body>& body, std::uint64_t unit, int depth) {
    if (!body || body->count > bytes_.size()) return false;
    const std::uint64_t references = body->count * unit;
    if (!IsInside(body->offset, references * referenceWidth_)) return false;
    // What waits will be visited as well.
    if (references > kMaximumObjects - objects_ - toVisit_.size()) return false;
    for (std::uint64_t i = 0; i < references; ++i) {
      const std::uint64_t object = NumberAt(body->offset + i * referenceWidth_, referenceWidth_);
      if (object >= objectCount_) return false;
      toVisit_.push_back({object, depth + 1});
    }
    return true;
  }

  std::string_view bytes_;
  int maximumDepth_;
  std::uint64_t offsetWidth_ = 0;
  std::uint64_t referenceWidth_ = 0;
  std::uint64_t objectCount_ = 0;
  std::uint64_t root_ = 0;
  std::uint64_t offsetTable_ = 0;
  std::uint64_t objects_ = 0;
  std::uint64_t unfoldedBytes_ = 0;
  std::vector<Visit> toVisit_;
};

}  // namespace

bool IsHarmlessBinaryPropertyList(std::string_view bytes, int maximumDepth) {
  return Checker(bytes, maximumDepth).Check();
}

}  // namespace Platform
