#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "VelmoraCore/Export.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// One named store of small values that persist. May be used on any thread, by any number of stores
// of one name: all of them see the same entries.
//
// An empty key stores, reads and removes nothing. A getter gives the fallback when the key is
// missing or when the entry was written as another type; integers, floating numbers and booleans
// never stand in for one another. A device that fails is logged, not thrown.
class VELMORA_CORE_API DataStoreInterface : public virtual ObjectInterface {
 public:
  ~DataStoreInterface() override;

  virtual void SetInt(const std::string& key, std::int32_t value) = 0;
  virtual std::int32_t GetInt(const std::string& key, std::int32_t fallback) const = 0;
  virtual void SetString(const std::string& key, const std::string& value) = 0;
  virtual std::string GetString(const std::string& key, const std::string& fallback) const = 0;
  virtual void SetDouble(const std::string& key, double value) = 0;
  virtual double GetDouble(const std::string& key, double fallback) const = 0;
  virtual void SetLong(const std::string& key, std::int64_t value) = 0;
  virtual std::int64_t GetLong(const std::string& key, std::int64_t fallback) const = 0;
  virtual void SetFloat(const std::string& key, float value) = 0;
  virtual float GetFloat(const std::string& key, float fallback) const = 0;
  virtual void SetBoolean(const std::string& key, bool value) = 0;
  virtual bool GetBoolean(const std::string& key, bool fallback) const = 0;

  // The getters of vectors and maps give an empty one in place of a fallback.
  virtual void SetVector(const std::string& key, const std::vector<std::string>& value) = 0;
  virtual std::vector<std::string> GetVector(const std::string& key) const = 0;
  virtual void SetMap(const std::string& key, const std::map<std::string, std::string>& value) = 0;
  virtual std::map<std::string, std::string> GetMap(const std::string& key) const = 0;

  virtual bool Contains(const std::string& key) const = 0;
  virtual void Remove(const std::string& key) = 0;

  // Removes every entry whose full key begins with this store's prefix, those of stores with longer
  // names included.
  virtual void RemoveAll() = 0;
};

}  // namespace Velmora
