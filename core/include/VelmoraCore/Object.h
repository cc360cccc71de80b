#pragma once

#include <memory>
#include <string>

#include "VelmoraCore/Export.h"

namespace Velmora {

// The root of every interface that the core and its platform layer share.
//
// Interfaces derive from it virtually; a class that implements one derives from Object as well,
// which supplies the three operations below.
class VELMORA_CORE_API ObjectInterface {
 public:
  virtual ~ObjectInterface();

  // True when `other` is equal to this object. Object compares identity.
  virtual bool Equals(const ObjectInterface& other) const = 0;

  // A shared pointer to this very object, which must already be owned by one. Throws
  // std::bad_weak_ptr otherwise.
  virtual std::shared_ptr<ObjectInterface> SharedPtrToThisObjectInterface() = 0;

  // A short text for logs and debuggers; UTF-8, one line.
  virtual std::string ToStringImpl() const = 0;

 protected:
  ObjectInterface() = default;
  ObjectInterface(const ObjectInterface&) = default;
  ObjectInterface& operator=(const ObjectInterface&) = default;
};

// The base class of everything that implements an interface of the core. Make instances with
// std::make_shared.
class VELMORA_CORE_API Object : public virtual ObjectInterface,
                                public std::enable_shared_from_this<Object> {
 public:
  ~Object() override;

  bool Equals(const ObjectInterface& other) const override;
  std::shared_ptr<ObjectInterface> SharedPtrToThisObjectInterface() override;
  std::string ToStringImpl() const override;

 protected:
  Object() = default;

  // `logTag` is the tag under which the object writes its log lines; ToStringImpl shows it.
  explicit Object(std::string logTag);

  Object(const Object&) = default;
  Object& operator=(const Object&) = default;

  const std::string& LogTag() const { return logTag_; }

 private:
  std::string logTag_;
};

// A shared pointer to `object`, as the type by which it was passed. The object must be owned by a
// shared pointer; throws std::bad_weak_ptr otherwise.
template <class T>
std::shared_ptr<T> ObjectToSharedPtr(T& object) {
  return std::dynamic_pointer_cast<T>(object.SharedPtrToThisObjectInterface());
}

}  // namespace Velmora
