#include "QEXCore_iOS/Platform/Class.h"

#include <cstdlib>

#include <cxxabi.h>

namespace Platform {

std::string Class::name() const {
  if (traits_ == nullptr) return {};
  const char* const encoded = traits_->type->name();
  const std::unique_ptr<char, void (*)(void*)> decoded(
      abi::__cxa_demangle(encoded, nullptr, nullptr, nullptr), &std::free);
  return decoded == nullptr ? encoded : decoded.get();
}

bool Class::isSubclassOf(const Class& other) const {
  if (traits_ == nullptr || other.traits_ == nullptr) return false;
  void* ignored = nullptr;
  return *this == other || other.traits_->catchPointer(traits_->throwPointer, nullptr, &ignored);
}

}  // namespace Platform
