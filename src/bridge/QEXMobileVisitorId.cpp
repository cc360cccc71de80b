#include "QEXCore_iOS/QEXMobileVisitorId.h"

QEXMobileVisitorId::QEXMobileVisitorId() = default;

QEXMobileVisitorId& QEXMobileVisitorId::initWithOrigin(
    const std::optional<std::string>& idOrigin, const std::optional<std::string>& idType,
    const std::optional<std::string>& identifier,
    QEXMobileVisitorAuthenticationState authenticationState) {
  setIdOrigin(idOrigin);
  setIdType(idType);
  setIdentifier(identifier);
  setAuthenticationState(authenticationState);
  return *this;
}

const std::optional<std::string>& QEXMobileVisitorId::idOrigin() const { return idOrigin_; }

void QEXMobileVisitorId::setIdOrigin(const std::optional<std::string>& idOrigin) {
  idOrigin_ = idOrigin;
}

const std::optional<std::string>& QEXMobileVisitorId::idType() const { return idType_; }

void QEXMobileVisitorId::setIdType(const std::optional<std::string>& idType) { idType_ = idType; }

const std::optional<std::string>& QEXMobileVisitorId::identifier() const { return identifier_; }

void QEXMobileVisitorId::setIdentifier(const std::optional<std::string>& identifier) {
  identifier_ = identifier;
}

QEXMobileVisitorAuthenticationState QEXMobileVisitorId::authenticationState() const {
  return authenticationState_;
}

void QEXMobileVisitorId::setAuthenticationState(
    QEXMobileVisitorAuthenticationState authenticationState) {
  authenticationState_ = authenticationState;
}
