#pragma once

#include <cstddef>
#include <memory>
#include <type_traits>
#include <vector>

#include "QEXCore_iOS/Platform/Value.h"
#include "VelmoraCore/Variant.h"

namespace Velmora {

// Makes a variant of one platform value, with a stack of its own: one frame for each container that
// is being converted. Serves one call only.
class VariantBuilder {
 public:
  std::shared_ptr<Variant> Build(const Platform::Value& value);
  VariantMap BuildMap(const Platform::Value& dictionary);
  VariantVector BuildVector(const Platform::Value& array);

 private:
  struct Frame {
    const Platform::Value* source;
    std::shared_ptr<Variant>* destination;  // null for the outermost

    std::size_t position = 0;
    VariantVector vector;

    Platform::DictionaryEntries::Iterator entry;
    Platform::DictionaryEntries::Iterator lastEntry;
    VariantMap map;
  };
  // Frames move when their list grows, and what lies in them must stay where it is.
  static_assert(std::is_nothrow_move_constructible_v<Frame>);

  void Open(const Platform::Value& container, std::shared_ptr<Variant>* destination);
  void Run(const Platform::Value& outermost);

  // Both return true when they met a container, which then is on top of the stack.
  bool ContinueVector();
  bool ContinueMap();
  bool Convert(const Platform::Value& value, std::shared_ptr<Variant>& destination);

  static std::shared_ptr<Variant> Close(Frame& frame);

  std::vector<Frame> frames_;
};

}  // namespace Velmora
