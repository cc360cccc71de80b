#pragma once

#include <memory>

#include <glib-object.h>

#include "platform/linux/GlibPointers.h"

namespace Platform {

// Knows an object without keeping it.
template <class T>
class WeakObject {
 public:
  WeakObject() = default;
  explicit WeakObject(T* object) : reference_(new GWeakRef) {
    g_weak_ref_init(reference_.get(), object);
  }

  // Null once the object has gone.
  GObjectPointer<T> Get() const {
    return GObjectPointer<T>(reference_ ? static_cast<T*>(g_weak_ref_get(reference_.get()))
                                        : nullptr);
  }

 private:
  struct Clear {
    void operator()(GWeakRef* reference) const {
      g_weak_ref_clear(reference);
      delete reference;
    }
  };

  std::unique_ptr<GWeakRef, Clear> reference_;
};

// A further owner of what somebody else owns; of a new widget, its first.
template <class T>
GObjectPointer<T> Retain(T* object) {
  return GObjectPointer<T>(object == nullptr ? nullptr
                                             : static_cast<T*>(g_object_ref_sink(object)));
}

}  // namespace Platform
