#pragma once

#include <memory>
#include <vector>

#include "QEXCore_iOS/QEXMobileVisitorId.h"
#include "VelmoraCore/VisitorId.h"
#include "VelmoraCore/VisitorIdAuthenticationState.h"

// Visitor identifiers of the core as public ones.
namespace Velmora {

// One public identifier for each of the core's, in order; an empty text becomes an absent one, and
// an empty pointer an identifier without content.
std::vector<QEXMobileVisitorId> ToQEXMobileVisitorIdArray(
    const std::vector<std::shared_ptr<VisitorId>>& visitorIds);

// Any value that is none of the enumerators becomes Unknown (unknown).
VisitorIdAuthenticationState ToCppVisitorAuthenticationState(
    QEXMobileVisitorAuthenticationState state);
QEXMobileVisitorAuthenticationState ToPlatformVisitorAuthenticationState(
    VisitorIdAuthenticationState state);

}  // namespace Velmora
