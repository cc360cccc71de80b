#pragma once

#include <memory>

#include "VelmoraCore/Core.h"
#include "VelmoraCore/Object.h"
#include "VelmoraCore/PlatformServicesInterface.h"

namespace Velmora {

// The process-wide bridge: owns the service registry and the core that runs on it.
//
// GetInstance takes no lock: the first call in the process must return on one thread before other
// threads call. From then on any thread may call everything but ResetInstance, which must not run
// beside any other use of the bridge.
//
// When the process ends by exit or by returning from main, the core is disposed: what was accepted
// before is still handled, for two seconds at most, and the core's threads are joined. A call of
// the app's that is under way on one of them is waited for however long it takes, so it must not
// wait for the thread that ends the process.
class VelmoraCoreBridge : public virtual Object {
 public:
  // The bridge, never null. The first call makes the services, then the core, and then runs the
  // migration of legacy data on the calling thread. What services, core or migration throw passes
  // through; when there is no core yet, nothing stays behind and the next call tries again.
  static VelmoraCoreBridge* GetInstance();

  // Disposes the core and forgets the bridge; without one, does nothing. Pointers to the old bridge
  // stay good for the life of the process. The next GetInstance builds everything anew.
  static void ResetInstance();

  ~VelmoraCoreBridge() override;

  // The same objects on every call, never null.
  std::shared_ptr<Core> GetCore();
  std::shared_ptr<PlatformServicesInterface> GetPlatformServices();

 private:
  class ExitHandler;

  VelmoraCoreBridge();

  static VelmoraCoreBridge* instance_;

  std::shared_ptr<Core> core_;
  std::shared_ptr<PlatformServicesInterface> platformServices_;
};

}  // namespace Velmora
