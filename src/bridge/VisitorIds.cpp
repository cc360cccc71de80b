#include "bridge/VisitorIds.h"

#include "interop/StringConversion.h"

namespace Velmora {

std::vector<QEXMobileVisitorId> ToQEXMobileVisitorIdArray(
    const std::vector<std::shared_ptr<VisitorId>>& visitorIds) {
  std::vector<QEXMobileVisitorId> result;
  result.reserve(visitorIds.size());
  for (const auto& visitorId : visitorIds) {
    QEXMobileVisitorId& added = result.emplace_back();
    if (!visitorId) continue;
    added.initWithOrigin(ToNSString(visitorId->GetIdOrigin()), ToNSString(visitorId->GetIdType()),
                         ToNSString(visitorId->GetId()),
                         ToPlatformVisitorAuthenticationState(visitorId->GetAuthenticationState()));
  }
  return result;
}

VisitorIdAuthenticationState ToCppVisitorAuthenticationState(
    QEXMobileVisitorAuthenticationState state) {
  switch (state) {
    case QEXMobileVisitorAuthenticationState::authenticated:
      return VisitorIdAuthenticationState::Authenticated;
    case QEXMobileVisitorAuthenticationState::loggedOut:
      return VisitorIdAuthenticationState::LoggedOut;
    case QEXMobileVisitorAuthenticationState::unknown:
      break;
  }
  return VisitorIdAuthenticationState::Unknown;
}

QEXMobileVisitorAuthenticationState ToPlatformVisitorAuthenticationState(
    VisitorIdAuthenticationState state) {
  switch (state) {
    case VisitorIdAuthenticationState::Authenticated:
      return QEXMobileVisitorAuthenticationState::authenticated;
    case VisitorIdAuthenticationState::LoggedOut:
      return QEXMobileVisitorAuthenticationState::loggedOut;
    case VisitorIdAuthenticationState::Unknown:
      break;
  }
  return QEXMobileVisitorAuthenticationState::unknown;
}

}  // namespace Velmora
