#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string>

#include "VelmoraCore/DataStoreInterface.h"
#include "VelmoraCore/PlatformServicesInterface.h"
#include "VelmoraCore/Variant.h"

namespace Velmora {

// Where the members of a configuration come from. A later one stands over those before it.
enum class ConfigurationLayer : std::size_t { File, Remote, Updates };

// A configuration in its layers. A value of one thread's.
class ConfigurationLayers {
 public:
  const VariantMap& Get(ConfigurationLayer layer) const;
  void Set(ConfigurationLayer layer, VariantMap members);

  // Each member as the highest layer that names it has it. One that is null there is left out.
  VariantMap Merged() const;

  // What was saved. A layer that cannot be read gives one warning and is left empty.
  static ConfigurationLayers Load(const PlatformServicesInterface& services,
                                  const DataStoreInterface& store);

  // A layer that cannot be written gives one error line, and what was saved before stays.
  void Save(ConfigurationLayer layer, const PlatformServicesInterface& services,
            DataStoreInterface& store) const;

 private:
  std::array<VariantMap, 3> layers_;
};

// True for an empty pointer and for a null.
bool IsNothing(const std::shared_ptr<Variant>& value);

}  // namespace Velmora
