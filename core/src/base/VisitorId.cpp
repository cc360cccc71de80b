#include "VelmoraCore/VisitorId.h"

#include <utility>

namespace Velmora {

VisitorId::VisitorId(std::string idOrigin, std::string idType, std::string id,
                     VisitorIdAuthenticationState authenticationState)
    : idOrigin_(std::move(idOrigin)),
      idType_(std::move(idType)),
      id_(std::move(id)),
      authenticationState_(authenticationState) {}

const std::string& VisitorId::GetIdOrigin() const { return idOrigin_; }

const std::string& VisitorId::GetIdType() const { return idType_; }

const std::string& VisitorId::GetId() const { return id_; }

VisitorIdAuthenticationState VisitorId::GetAuthenticationState() const {
  return authenticationState_;
}

}  // namespace Velmora
