#pragma once

#include <memory>
#include <string>
#include <type_traits>
#include <typeinfo>

#include "QEXCore_iOS/Platform/Export.h"

namespace Platform {

// A class as a value: it can be handed over, asked for its kin, and instances can be had of it.
// Made with ClassOf<T>() for any class, which needs to know nothing of this one.
//
// A plain value; copies are cheap and may be used on any thread.
class QEXCORE_API Class {
 public:
  // No class at all: it has no name, it is nobody's subclass, and it gives no instances.
  constexpr Class() noexcept = default;

  // As the compiler spells it, for people.
  std::string name() const;

  // True when this class is `other` or has it as a public, unambiguous base. Makes no instance.
  bool isSubclassOf(const Class& other) const;

  // Allocation without initialisation: a default-constructed instance, which an `init…` operation
  // is to make ready. An empty pointer when this class is neither Base nor a subclass of it, and
  // when it cannot be default-constructed: it is abstract, say. What the constructor throws passes
  // through.
  template <class Base>
  std::shared_ptr<Base> alloc() const;

  friend bool operator==(const Class& left, const Class& right) {
    if (left.traits_ == nullptr || right.traits_ == nullptr) return left.traits_ == right.traits_;
    return *left.traits_->type == *right.traits_->type;
  }

 private:
  template <class T>
  friend Class ClassOf();

  // The language keeps the bases of a class for one use at run time: a thrown pointer is caught as
  // a pointer to any public base, and points to that base then. So a class knows how to throw a
  // pointer to one of its instances, and how to catch one.
  using Thrower = void (*)(void* instance);
  struct Traits {
    const std::type_info* type;
    std::shared_ptr<void> (*allocate)();
    Thrower throwPointer;
    bool (*catchPointer)(Thrower thrower, void* instance, void** caught);
  };

  template <class T>
  static std::shared_ptr<void> Allocate() {
    if constexpr (std::is_default_constructible_v<T>) {
      return std::make_shared<T>();
    } else {
      return nullptr;
    }
  }
  // NOLINTBEGIN(misc-throw-by-value-catch-by-reference): it is the pointer that finds its bases.
  template <class T>
  static void ThrowPointer(void* instance) {
    throw static_cast<T*>(instance);
  }
  template <class T>
  static bool CatchPointer(Thrower thrower, void* instance, void** caught) {
    try {
      thrower(instance);
    } catch (T* pointer) {
      *caught = pointer;
      return true;
    } catch (...) {
    }
    return false;
  }
  // NOLINTEND(misc-throw-by-value-catch-by-reference)

  explicit constexpr Class(const Traits* traits) noexcept : traits_(traits) {}

  const Traits* traits_ = nullptr;
};

// The class T. Safe from any thread.
template <class T>
Class ClassOf() {
  static_assert(std::is_class_v<T> && std::is_same_v<T, std::remove_cv_t<T>>,
                "T must be the name of a class");
  static constexpr Class::Traits kTraits{&typeid(T), &Class::Allocate<T>, &Class::ThrowPointer<T>,
                                         &Class::CatchPointer<T>};
  return Class(&kTraits);
}

template <class Base>
std::shared_ptr<Base> Class::alloc() const {
  if (!isSubclassOf(ClassOf<Base>())) return nullptr;
  const std::shared_ptr<void> instance = traits_->allocate();
  void* base = nullptr;
  if (instance == nullptr || !CatchPointer<Base>(traits_->throwPointer, instance.get(), &base)) {
    return nullptr;
  }
  return std::shared_ptr<Base>(instance, static_cast<Base*>(base));
}

}  // namespace Platform
