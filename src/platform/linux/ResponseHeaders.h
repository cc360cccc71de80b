#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

namespace Platform {

// Gathers the headers of a response from its lines, as they come. The status line of the next
// response, after a redirect or an interim one, begins anew; what follows the empty line that ends
// the headers (trailers) is left out. Belongs to one thread at a time.
class ResponseHeaders {
 public:
  // All the lines of one response together; more is no honest server's.
  static constexpr std::size_t kLargest = std::size_t{256} * 1024;

  // Takes one line, with or without its end. False when there are too many.
  bool Add(std::string_view line);

  const std::map<std::string, std::string>& All() const { return headers_; }

 private:
  void AddField(std::string_view line);
  void ContinueField(std::string_view text);

  std::map<std::string, std::string> headers_;
  std::string lastName_;  // of the field that a folded line goes on with
  std::size_t size_ = 0;
  bool isComplete_ = false;
};

}  // namespace Platform
