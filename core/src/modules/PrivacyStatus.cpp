#include "modules/PrivacyStatus.h"

#include "VelmoraCore/EventNames.h"

namespace Velmora {

MobilePrivacyStatus PrivacyStatusOf(std::int64_t number) {
  if (number == static_cast<std::int64_t>(MobilePrivacyStatus::OptedIn)) {
    return MobilePrivacyStatus::OptedIn;
  }
  if (number == static_cast<std::int64_t>(MobilePrivacyStatus::OptedOut)) {
    return MobilePrivacyStatus::OptedOut;
  }
  return MobilePrivacyStatus::Unknown;
}

MobilePrivacyStatus PrivacyStatusOf(const std::shared_ptr<Variant>& value) {
  const bool isNumber = value != nullptr && value->IsNumericKind();
  return isNumber ? PrivacyStatusOf(value->GetLong()) : MobilePrivacyStatus::Unknown;
}

std::optional<MobilePrivacyStatus> PrivacyStatusIn(const StateReader& configuration) {
  const std::shared_ptr<Variant> status = configuration.Value(EventKeys::kPrivacyStatus);
  return status == nullptr ? std::nullopt : std::optional(PrivacyStatusOf(status));
}

std::shared_ptr<Variant> ToVariant(MobilePrivacyStatus status) {
  return Variant::FromLong(static_cast<std::int64_t>(status));
}

}  // namespace Velmora
