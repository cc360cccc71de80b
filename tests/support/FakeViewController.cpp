#include "support/FakeViewController.h"

#include "QEXCore_iOS/Platform/DeviceError.h"

namespace TestSupport {

void FakeViewController::Present(const std::shared_ptr<Platform::AlertController>& alert,
                                 bool animated) {
  if (failsToPresent) throw Platform::DeviceError("The device failed.");
  presentations.push_back({alert, animated});
}

}  // namespace TestSupport
