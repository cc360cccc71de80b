#include "services/ui/MainQueueWork.h"

#include <utility>

#include "QEXCore_iOS/Platform/Host.h"
#include "VelmoraCore/TryCatch.h"

namespace Velmora {

void OnMainQueue(std::function<void()> work) noexcept {
  TrySwallow([&work] { Platform::Host::Current()->mainQueue->Async(std::move(work)); });
}

}  // namespace Velmora
