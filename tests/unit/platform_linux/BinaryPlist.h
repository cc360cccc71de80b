#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Writes binary property lists byte by byte, so that tests can make sound and unsound ones.
class BinaryPlist {
 public:
  // `referenceWidth` is the width in bytes of one object's reference to another.
  explicit BinaryPlist(int referenceWidth = 1) : referenceWidth_(referenceWidth) {}

  // Adds an object as these bytes; gives its number.
  std::uint64_t Add(const std::string& bytes) {
    objects_.push_back(bytes);
    return objects_.size() - 1;
  }

  std::uint64_t AddAscii(const std::string& text) { return Add(Marker(0x5, text.size()) + text); }

  // Of references to the objects of these numbers, which may come later.
  std::uint64_t AddArray(const std::vector<std::uint64_t>& elements) {
    return Add(Marker(0xA, elements.size()) + References(elements));
  }
  std::uint64_t AddDictionary(const std::vector<std::uint64_t>& keys,
                              const std::vector<std::uint64_t>& values) {
    return Add(Marker(0xD, keys.size()) + References(keys) + References(values));
  }

  std::string Bytes(std::uint64_t root) const {
    std::string bytes = "bplist00";
    std::string table;
    for (const std::string& object : objects_) {
      table += BigEndian(bytes.size(), 4);
      bytes += object;
    }
    const std::uint64_t tableOffset = bytes.size();
    return bytes + table + Trailer(4, referenceWidth_, objects_.size(), root, tableOffset);
  }

  static std::string Trailer(int offsetWidth, int referenceWidth, std::uint64_t objects,
                             std::uint64_t root, std::uint64_t tableOffset) {
    return std::string(6, '\0') + static_cast<char>(offsetWidth) +
           static_cast<char>(referenceWidth) + BigEndian(objects, 8) + BigEndian(root, 8) +
           BigEndian(tableOffset, 8);
  }

  static std::string BigEndian(std::uint64_t number, int width) {
    std::string bytes;
    for (int i = width - 1; i >= 0; --i) bytes += static_cast<char>(number >> (8 * i) & 0xFF);
    return bytes;
  }

  // The first bytes of an object that holds `count` things.
  static std::string Marker(int kind, std::uint64_t count) {
    if (count < 15) return std::string(1, static_cast<char>(kind << 4 | static_cast<int>(count)));
    return std::string(1, static_cast<char>(kind << 4 | 0xF)) + '\x13' + BigEndian(count, 8);
  }

 private:
  std::string References(const std::vector<std::uint64_t>& numbers) const {
    std::string bytes;
    for (const std::uint64_t number : numbers) bytes += BigEndian(number, referenceWidth_);
    return bytes;
  }

  int referenceWidth_;
  std::vector<std::string> objects_;
};
