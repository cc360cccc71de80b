#pragma once

#include "QEXCore_iOS/Platform/Uuid.h"

namespace Platform {

class OpenSslUuidGenerator final : public UuidGenerator {
 public:
  OpenSslUuidGenerator();

  UuidBytes Random() override;
};

}  // namespace Platform
