#include "services/ui/KRVUrlHandler.h"

#include "QEXCore_iOS/Platform/Host.h"
#include "VelmoraCore/TryCatch.h"

bool KRVUrlHandler::showUrl(const std::optional<std::string>& url) {
  if (!url || url->empty()) return false;
  bool isOpened = false;
  Velmora::TrySwallow([&] {
    const auto host = Platform::Host::Current();
    if (host->urlParser->Parse(*url)) isOpened = host->application->OpenUrl(*url);
  });
  return isOpened;
}
