// One of two shared objects that use the library in one process.

#include "QEXCore_iOS/GetCore.h"
#include "VelmoraCore/Core.h"

extern "C" __attribute__((visibility("default"))) const void* CoreSeenFromThisSide() {
  return GetCore().get();
}
