#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "QEXCore_iOS/Platform/Export.h"

// How far the visitor behind an identifier is known.
enum class QEXMobileVisitorAuthenticationState : std::uint64_t {
  unknown = 0,
  authenticated = 1,
  loggedOut = 2,
};

// An identifier of the visitor. A plain value: copies are independent; use one object on one thread
// at a time. Texts are UTF-8; an absent text is not the same as an empty one, and nothing is
// checked.
class QEXCORE_API QEXMobileVisitorId {
 public:
  // All texts absent, the state unknown.
  QEXMobileVisitorId();

  // Sets all four properties and returns this object.
  QEXMobileVisitorId& initWithOrigin(const std::optional<std::string>& idOrigin,
                                     const std::optional<std::string>& idType,
                                     const std::optional<std::string>& identifier,
                                     QEXMobileVisitorAuthenticationState authenticationState);

  // Who gave the identifier.
  const std::optional<std::string>& idOrigin() const;
  void setIdOrigin(const std::optional<std::string>& idOrigin);

  // What kind of identifier it is.
  const std::optional<std::string>& idType() const;
  void setIdType(const std::optional<std::string>& idType);

  // The identifier itself.
  const std::optional<std::string>& identifier() const;
  void setIdentifier(const std::optional<std::string>& identifier);

  QEXMobileVisitorAuthenticationState authenticationState() const;
  void setAuthenticationState(QEXMobileVisitorAuthenticationState authenticationState);

 private:
  std::optional<std::string> idOrigin_;
  std::optional<std::string> idType_;
  std::optional<std::string> identifier_;
  QEXMobileVisitorAuthenticationState authenticationState_ =
      QEXMobileVisitorAuthenticationState::unknown;
};
