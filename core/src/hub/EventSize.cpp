#include "hub/EventSize.h"

#include <string>
#include <vector>

namespace Velmora {
namespace {

// Of a value in its container, whatever it holds: the variant, what counts its owners, and the
// node of the map.
constexpr std::size_t kPerValue = 128;

// Adds up what has been found, and keeps the containers that are still to be looked into.
class Sum {
 public:
  void Add(std::size_t bytes) { bytes_ += bytes; }

  void Add(const VariantMap& members) {
    for (const auto& [key, value] : members) {
      Add(key.size());
      Add(value);
    }
  }

  std::size_t Total() {
    while (!waiting_.empty()) {
      const Variant& container = *waiting_.back();
      waiting_.pop_back();
      if (container.GetKind() == VariantKind::VariantMap) {
        Add(container.GetVariantMap());
      } else {
        for (const auto& element : container.GetVariantVector()) Add(element);
      }
    }
    return bytes_;
  }

 private:
  void Add(const std::shared_ptr<Variant>& value) {
    Add(kPerValue);
    if (value == nullptr) return;
    switch (value->GetKind()) {
      case VariantKind::String:
        Add(value->GetString().size());
        break;
      case VariantKind::VariantVector:
      case VariantKind::VariantMap:
        waiting_.push_back(value.get());
        break;
      default:
        break;
    }
  }

  std::vector<const Variant*> waiting_;
  std::size_t bytes_ = 0;
};

}  // namespace

std::size_t SizeOf(const Event& event) {
  Sum sum;
  sum.Add(sizeof event + event.GetName().size() + event.GetType().size() +
          event.GetSource().size() + event.GetId().size());
  if (const auto data = event.GetData()) sum.Add(data->GetAll());
  return sum.Total();
}

}  // namespace Velmora
