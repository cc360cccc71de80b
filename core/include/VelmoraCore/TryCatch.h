#pragma once

#include <functional>

#include "VelmoraCore/Export.h"
#include "VelmoraCore/SdkError.h"

namespace Velmora {

// Runs `attempt` on this thread and hands what it throws to `onError`: an SdkError as it is,
// anything else as an SdkError "std.exception" with the exception's text as its message. What
// `onError` itself throws passes through. An empty `onError` swallows the error.
VELMORA_CORE_API void TryCatch(const std::function<void()>& attempt,
                               const std::function<void(SdkError&)>& onError);

// Runs `attempt` on this thread and swallows whatever it throws. True when nothing was thrown.
VELMORA_CORE_API bool TrySwallow(const std::function<void()>& attempt);

}  // namespace Velmora
