#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace Velmora {

// What modules publish about themselves, version by version. May be used on any thread.
//
// A version is valid from the event number that it was set for until that of the next version. Of
// each owner the newest kMaxVersions are kept, and no more than kMaxBytes of text; the newest one
// always is. For an event older than all that is kept, the oldest one kept answers.
class SharedStates {
 public:
  using Text = std::shared_ptr<const std::string>;

  static constexpr std::size_t kMaxVersions = 1'000;
  static constexpr std::size_t kMaxBytes = std::size_t{16} * 1024 * 1024;

  // Sets the state that is valid from `number` on, in the place of one set for the same number.
  // The empty text is a state that is pending. A text longer than kMaxBytes is refused: false.
  bool Set(const std::string& owner, Text text, std::int64_t number);

  // False when the owner had none.
  bool Clear(const std::string& owner);

  // The state as it stood at the event of that number, or the newest one without a number; the same
  // pointer as long as it is the same state. An empty pointer when the owner had none.
  Text Get(const std::string& owner, std::optional<std::int64_t> number) const;

 private:
  struct Versions {
    std::map<std::int64_t, Text> texts;
    std::size_t bytes = 0;
    bool isIncomplete = false;  // old versions have gone
  };

  static void DropOldest(Versions& versions);

  mutable std::mutex mutex_;
  std::map<std::string, Versions> versions_;
};

}  // namespace Velmora
