#include "VelmoraCore/TryCatch.h"

#include <exception>
#include <optional>
#include <string>

#include "VelmoraCore/ErrorCodes.h"

namespace Velmora {
namespace {

SdkError Foreign(const std::string& message, int line) {
  return {ErrorCodes::kStdException, message, DebugInfo("src/base/TryCatch", line)};
}

std::optional<SdkError> ErrorOf(const std::function<void()>& attempt) {
  try {
    attempt();
    return std::nullopt;
  } catch (const SdkError& error) {
    return error;
  } catch (const std::exception& error) {
    return Foreign(error.what(), __LINE__);
  } catch (...) {
    return Foreign("something other than an exception was thrown", __LINE__);
  }
}

}  // namespace

void TryCatch(const std::function<void()>& attempt, const std::function<void(SdkError&)>& onError) {
  std::optional<SdkError> error = ErrorOf(attempt);
  if (error.has_value() && onError) {
    onError(*error);
  }
}

bool TrySwallow(const std::function<void()>& attempt) {
  try {
    attempt();
    return true;
  } catch (...) {
    return false;
  }
}

}  // namespace Velmora
