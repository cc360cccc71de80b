#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "VelmoraCore/Variant.h"

namespace Velmora {

// Reads the members of a JSON object that anybody may have written, and keeps the first thing that
// is wrong with it: a member that is missing, of another kind, beyond its bounds, or that nobody
// asked for.
class MemberReader {
 public:
  static constexpr std::size_t kMaxTextLength = 4'096;

  enum class Need { Required, Optional };

  // `members` outlives the reader.
  explicit MemberReader(const VariantMap& members) : members_(members) {}

  // What a member holds; an empty pointer when it is missing.
  std::shared_ptr<Variant> Value(const std::string& name, Need need);

  // Each gives nothing when the member is missing or something is wrong with it. A text that is
  // required is not empty.
  std::optional<std::string> Text(const std::string& name, Need need);
  std::optional<bool> Flag(const std::string& name);
  std::optional<std::int64_t> WholeNumber(const std::string& name, std::int64_t least,
                                          std::int64_t greatest);
  std::shared_ptr<Variant> Vector(const std::string& name, std::size_t mostElements);
  std::shared_ptr<Variant> Map(const std::string& name, Need need);

  // Says that something else is wrong; what was said before stands.
  void Complain(const std::string& problem);

  // What is wrong; empty when all is well. To be asked last.
  std::string Problem();

 private:
  std::shared_ptr<Variant> OfKind(const std::string& name, VariantKind kind, Need need,
                                  const char* kindName);

  const VariantMap& members_;
  std::set<std::string> known_;
  std::string problem_;
};

}  // namespace Velmora
