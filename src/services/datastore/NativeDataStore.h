#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "QEXCore_iOS/Platform/UserDefaults.h"
#include "QEXCore_iOS/Platform/Value.h"
#include "VelmoraCore/DataStoreInterface.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// A data store that is nothing but a prefix of keys in the user defaults: an entry lies under
// "Korvo." + name + "." + key, and without a name under "Korvo." + key. So stores whose names begin
// alike may share entries, and RemoveAll of one removes those of the other.
//
// Safe from any thread; has no lock of its own. Every operation on an empty key changes or finds
// nothing and logs one debug line.
class NativeDataStore final : public Object, public virtual DataStoreInterface {
 public:
  explicit NativeDataStore(const std::string& name);

  void SetInt(const std::string& key, std::int32_t value) override;
  std::int32_t GetInt(const std::string& key, std::int32_t fallback) const override;

  // Text ends at its first zero byte. An empty one is stored; one that is not UTF-8 removes the
  // entry.
  void SetString(const std::string& key, const std::string& value) override;
  std::string GetString(const std::string& key, const std::string& fallback) const override;

  void SetDouble(const std::string& key, double value) override;
  double GetDouble(const std::string& key, double fallback) const override;
  void SetLong(const std::string& key, std::int64_t value) override;
  std::int64_t GetLong(const std::string& key, std::int64_t fallback) const override;
  void SetFloat(const std::string& key, float value) override;
  float GetFloat(const std::string& key, float fallback) const override;
  void SetBoolean(const std::string& key, bool value) override;
  bool GetBoolean(const std::string& key, bool fallback) const override;

  // Throws std::invalid_argument, and stores nothing, when an element is empty or not UTF-8: the
  // platform's arrays have no place for those.
  void SetVector(const std::string& key, const std::vector<std::string>& value) override;
  std::vector<std::string> GetVector(const std::string& key) const override;

  // Entries whose key or value is empty or not UTF-8 are left out.
  void SetMap(const std::string& key, const std::map<std::string, std::string>& value) override;
  std::map<std::string, std::string> GetMap(const std::string& key) const override;

  bool Contains(const std::string& key) const override;
  void Remove(const std::string& key) override;
  void RemoveAll() override;

  // Stores any platform value; an absent one removes the entry.
  void Put(const std::string& key, const Platform::Value& value);

  // What is stored under the key, of whatever type; absent when there is nothing.
  Platform::Value Get(const std::string& key) const;

  // What an entry must be to be read as an integer, a floating number or a boolean. Numbers are
  // told apart by their storage type alone; a boolean is no number here.
  static bool isTypeOfLong(const Platform::Value& object);
  static bool isTypeOfDouble(const Platform::Value& object);
  static bool isTypeOfBool(const Platform::Value& object);

 private:
  const std::string name_;
  const std::string prefix_;
  const std::shared_ptr<Platform::UserDefaults> userDefaults_;
};

}  // namespace Velmora
