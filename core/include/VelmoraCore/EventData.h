#pragma once

#include <memory>
#include <string>

#include "VelmoraCore/Export.h"
#include "VelmoraCore/Variant.h"

namespace Velmora {

// What an event carries: variants by key. Belongs to one thread while it is being filled; once
// nobody changes it any more, any thread may read it.
class VELMORA_CORE_API EventData {
 public:
  EventData();
  explicit EventData(VariantMap values);

  // Each sets or replaces the value of `key`. An empty pointer is kept as "no value".
  void PutString(const std::string& key, const std::string& value);
  void PutStringMap(const std::string& key, const StringMap& value);
  void Put(const std::string& key, std::shared_ptr<Variant> value);

  // An empty pointer when there is no such key.
  std::shared_ptr<Variant> Get(const std::string& key) const;

  const VariantMap& GetAll() const;
  bool IsEmpty() const;

  // A copy that can be changed without changing this one; the variants, which never change, are
  // shared.
  std::shared_ptr<EventData> Copy() const;

 private:
  VariantMap values_;
};

}  // namespace Velmora
