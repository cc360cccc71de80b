#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "VelmoraCore/Variant.h"
#include "hub/HubModule.h"

namespace Velmora {

// The newest state that another module shares, such as the configuration. Each text is read once.
// For the hub's thread only.
class StateReader {
 public:
  struct Range {
    std::int64_t least;
    std::int64_t greatest;
  };

  // `logTag` is that of the module that reads.
  StateReader(const char* owner, const char* logTag) : owner_(owner), logTag_(logTag) {}

  // Looks for a newer state. True when there is one, or when there is none any more.
  bool Refresh(HubContext& hub);

  // False until there is one, and when its text cannot be read.
  bool IsKnown() const { return members_.has_value(); }

  // An empty pointer when there is no such member.
  std::shared_ptr<Variant> Value(const std::string& key) const;

  // Nothing when there is no such member; the same, with a warning, when it is no text.
  std::optional<std::string> Text(const std::string& key) const;

  // The member brought into the range; the fallback when there is none, and, with a warning, when
  // it is no number.
  std::int64_t Number(const std::string& key, std::int64_t fallback, Range range) const;

 private:
  const char* const owner_;
  const char* const logTag_;

  // The text last looked at, held so that no other text can have its address.
  std::shared_ptr<const std::string> text_;
  std::optional<VariantMap> members_;
};

// Has `follow` called whenever the configuration may have changed: right after the configuration
// module has handled a request, which an opt-out may be, and whenever a state was shared. To be
// called in HubModule::Attach by modules that come after that one.
void ListenForConfiguration(HubContext& hub, const HubContext::Handler& follow);

}  // namespace Velmora
