#pragma once

#include <string>

#include "VelmoraCore/Export.h"
#include "VelmoraCore/VisitorIdAuthenticationState.h"

namespace Velmora {

// One identifier of the visitor. Never changes; may be read on any thread.
class VELMORA_CORE_API VisitorId {
 public:
  VisitorId(std::string idOrigin, std::string idType, std::string id,
            VisitorIdAuthenticationState authenticationState);

  const std::string& GetIdOrigin() const;
  const std::string& GetIdType() const;
  const std::string& GetId() const;
  VisitorIdAuthenticationState GetAuthenticationState() const;

 private:
  std::string idOrigin_;
  std::string idType_;
  std::string id_;
  VisitorIdAuthenticationState authenticationState_;
};

}  // namespace Velmora
