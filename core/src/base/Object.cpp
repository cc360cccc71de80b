#include "VelmoraCore/Object.h"

#include <sstream>
#include <utility>

namespace Velmora {

ObjectInterface::~ObjectInterface() = default;

Object::Object(std::string logTag) : logTag_(std::move(logTag)) {}

Object::~Object() = default;

bool Object::Equals(const ObjectInterface& other) const {
  return static_cast<const ObjectInterface*>(this) == &other;
}

std::shared_ptr<ObjectInterface> Object::SharedPtrToThisObjectInterface() {
  return shared_from_this();
}

std::string Object::ToStringImpl() const {
  std::ostringstream text;
  text << (logTag_.empty() ? "Object" : logTag_) << '@' << static_cast<const void*>(this);
  return text.str();
}

}  // namespace Velmora
