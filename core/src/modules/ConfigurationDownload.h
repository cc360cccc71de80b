#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "VelmoraCore/Variant.h"
#include "hub/HubModule.h"
#include "modules/HomeTimer.h"
#include "modules/RetryDelay.h"

namespace Velmora {

// Fetches the configuration that belongs to an app id. Its URL is what the application's
// information dictionary has under "VelmoraConfigurationUrl", https, with the id, percent-encoded,
// in the place of "{appId}". For the hub's thread, which never waits for the network.
//
// An answer with an error gives one warning. Without an answer the download is tried again, first
// after 15 seconds and then with growing delays of at most an hour.
class ConfigurationDownload {
 public:
  using Members = std::function<void(const VariantMap&)>;

  explicit ConfigurationDownload(HubContext& hub);

  // 1 to 255 bytes without control characters, and neither "." nor "..".
  static bool IsAppId(const std::string& appId);

  // Forgets the download before. `onMembers` is called with what has come, at home. False, with one
  // warning, when there is nowhere to fetch it from.
  bool Begin(const std::string& appId, Members onMembers);

  // What was downloaded for the id of the last Begin at any time before.
  std::optional<VariantMap> Cached() const;

 private:
  std::optional<std::string> FindUrl(const std::string& appId) const;
  void Fetch();
  void OnText(const std::string& text);
  void OnSilence();

  HubContext& hub_;
  const HubContext::Poster wayHome_;
  std::string url_;
  Members onMembers_;
  RetryDelay delay_;
  HomeTimer timer_;
  std::uint64_t attempt_ = 0;  // what belongs to an older one is ignored
};

}  // namespace Velmora
