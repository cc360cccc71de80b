#include "QEXCore_iOS/Platform/Error.h"

#include <utility>

#include "QEXCore_iOS/Platform/DeviceError.h"

namespace Platform {

DeviceError::~DeviceError() = default;

Error::Error() = default;

Error::Error(std::string domain, std::int64_t code)
    : domain_(std::move(domain)),
      code_(code),
      localizedDescription_("The operation couldn\u2019t be completed. (" + domain_ + " error " +
                            std::to_string(code_) + ".)") {}

Error::Error(std::string domain, std::int64_t code, std::string localizedDescription)
    : domain_(std::move(domain)),
      code_(code),
      localizedDescription_(std::move(localizedDescription)) {}

const std::string& Error::Domain() const { return domain_; }

std::int64_t Error::Code() const { return code_; }

const std::string& Error::LocalizedDescription() const { return localizedDescription_; }

}  // namespace Platform
