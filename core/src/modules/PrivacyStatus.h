#pragma once

#include <cstdint>
#include <memory>

#include "VelmoraCore/MobilePrivacyStatus.h"
#include "VelmoraCore/Variant.h"

namespace Velmora {

// The status that stands behind a number; Unknown for any other number.
MobilePrivacyStatus PrivacyStatusOf(std::int64_t number);

// The same for a value; Unknown for none and for one that is no number.
MobilePrivacyStatus PrivacyStatusOf(const std::shared_ptr<Variant>& value);

std::shared_ptr<Variant> ToVariant(MobilePrivacyStatus status);

}  // namespace Velmora
