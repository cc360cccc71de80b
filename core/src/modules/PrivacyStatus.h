#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "VelmoraCore/MobilePrivacyStatus.h"
#include "VelmoraCore/Variant.h"
#include "modules/StateReader.h"

namespace Velmora {

// The status that stands behind a number; Unknown for any other number.
MobilePrivacyStatus PrivacyStatusOf(std::int64_t number);

// The same for a value; Unknown for none and for one that is no number.
MobilePrivacyStatus PrivacyStatusOf(const std::shared_ptr<Variant>& value);

// That of a configuration; nothing while there is none that can be read.
std::optional<MobilePrivacyStatus> PrivacyStatusIn(const StateReader& configuration);

std::shared_ptr<Variant> ToVariant(MobilePrivacyStatus status);

}  // namespace Velmora
