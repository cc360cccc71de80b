#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "QEXCore_iOS/Platform/Value.h"
#include "VelmoraCore/Variant.h"

namespace Velmora {

// Makes a platform value of one variant, with a stack of its own: one frame for each container that
// is being converted. Serves one call only. Throws std::invalid_argument when an element of a
// vector becomes absent.
class ValueBuilder {
 public:
  Platform::Value Build(const std::shared_ptr<Variant>& variant);
  Platform::Value BuildDictionary(const VariantMap& map);
  Platform::Value BuildArray(const VariantVector& vector);

 private:
  struct Frame {
    const VariantVector* vector = nullptr;  // one of these two is the source
    const VariantMap* map = nullptr;

    std::size_t position = 0;  // of the vector's element to come
    std::vector<Platform::Value> items;

    VariantMap::const_iterator entry;  // the map's entry to come
    Platform::Value dictionary;
  };

  void OpenVector(const VariantVector& vector);
  void OpenMap(const VariantMap& map);
  Platform::Value Run();

  // Converts elements until one is a container, which then is on top of the stack, or until none is
  // left, which gives false.
  bool ContinueVector();
  bool ContinueMap();

  // Puts the value of the element to come into the uppermost container and moves to the next.
  void Deliver(Platform::Value value);

  // True when `variant` is a container, which then is on top of the stack.
  bool OpenIfContainer(const std::shared_ptr<Variant>& variant);

  std::vector<Frame> frames_;
};

}  // namespace Velmora
