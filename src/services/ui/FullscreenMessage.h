#pragma once

#include <memory>
#include <string>

#include "VelmoraCore/FullScreenMessageUiInterface.h"
#include "VelmoraCore/FullscreenListenerInterface.h"
#include "VelmoraCore/Object.h"
#include "services/ui/KRVFullScreenHandler.h"
#include "services/ui/KRVMessagesMonitor.h"

namespace Velmora {

// A full-screen HTML message. May be called on any thread. While it is shown, it keeps itself.
class FullscreenMessage final : public Object, public virtual FullScreenMessageUiInterface {
 public:
  FullscreenMessage();

  // To be called once, before anything else, on a message that a shared pointer owns.
  void InitMessage(const std::string& html,
                   const std::shared_ptr<FullscreenListenerInterface>& listener,
                   const std::shared_ptr<KRVMessagesMonitor>& messagesMonitor);

  void Show() override;
  void OpenUrl(const std::string& url) override;
  void Remove() override;

 private:
  std::shared_ptr<KRVFullScreenHandler> handler_;
};

}  // namespace Velmora
