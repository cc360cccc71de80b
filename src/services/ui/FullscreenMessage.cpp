#include "services/ui/FullscreenMessage.h"

#include "interop/StringConversion.h"

namespace Velmora {

FullscreenMessage::FullscreenMessage() : Object("FullscreenMessage") {}

void FullscreenMessage::InitMessage(const std::string& html,
                                    const std::shared_ptr<FullscreenListenerInterface>& listener,
                                    const std::shared_ptr<KRVMessagesMonitor>& messagesMonitor) {
  handler_ = std::make_shared<KRVFullScreenHandler>(
      ToNSString(html).value_or(""), ObjectToSharedPtr<FullScreenMessageUiInterface>(*this),
      listener, messagesMonitor);
}

void FullscreenMessage::Show() { handler_->show(); }

void FullscreenMessage::OpenUrl(const std::string& url) { handler_->openUrl(ToNSString(url)); }

void FullscreenMessage::Remove() { handler_->dismiss(); }

}  // namespace Velmora
