#include "support/FakeUserDefaults.h"

#include <string_view>
#include <utility>

#include <gtest/gtest.h>

#include "QEXCore_iOS/Platform/Date.h"

namespace TestSupport {
namespace {

using Platform::Value;
using Platform::ValueKind;

constexpr std::string_view kTooDeep = "nests too deep";
constexpr std::string_view kWrongKind = "is or holds what user defaults do not take";

bool IsStorableKind(const Value& value) {
  switch (value.Kind()) {
    case ValueKind::Absent:
    case ValueKind::Null:
      return false;
    case ValueKind::Object:
      return value.AsObjectOf<Platform::Date>() != nullptr;
    default:
      return true;
  }
}

// Why the value cannot be stored, or an empty text.
std::string_view Objection(const Value& value) {
  std::vector<std::pair<Value, int>> rest{{value, 1}};
  while (!rest.empty()) {
    const auto [item, depth] = std::move(rest.back());
    rest.pop_back();
    if (!IsStorableKind(item)) return kWrongKind;
    if (!item.IsArray() && !item.IsDictionary()) continue;
    if (depth > Platform::UserDefaults::kMaximumDepth) return kTooDeep;
    for (const Value& element : item.Items()) rest.emplace_back(element, depth + 1);
    for (const auto& [key, element] : item.Entries()) {
      if (!key.IsString()) return kWrongKind;
      rest.emplace_back(element, depth + 1);
    }
  }
  return {};
}

}  // namespace

Value FakeUserDefaults::ObjectForKey(const std::string& key) const {
  return values_.With([&](const auto& values) {
    const auto found = values.find(key);
    return found == values.end() ? Value() : found->second;
  });
}

void FakeUserDefaults::SetObject(const std::string& key, const Value& value) {
  if (value.IsAbsent()) return RemoveObject(key);
  const std::string_view objection = Objection(value);
  if (objection.empty()) {
    values_.With([&](auto& values) { values.insert_or_assign(key, value); });
  } else if (systemLog_) {
    systemLog_->Write("User defaults: the value for \"" + key + "\" " + std::string(objection));
  } else {
    ADD_FAILURE() << "the value for \"" << key << "\" " << objection;
  }
}

void FakeUserDefaults::RemoveObject(const std::string& key) {
  values_.With([&](auto& values) { values.erase(key); });
}

void FakeUserDefaults::RemoveObjectsWithPrefix(const std::string& prefix) {
  values_.With([&](auto& values) {
    std::erase_if(values, [&](const auto& entry) { return entry.first.starts_with(prefix); });
  });
}

std::vector<std::string> FakeUserDefaults::KeysWithPrefix(const std::string& prefix) const {
  return values_.With([&](const auto& values) {
    std::vector<std::string> keys;
    for (auto entry = values.lower_bound(prefix);
         entry != values.end() && entry->first.starts_with(prefix); ++entry) {
      keys.push_back(entry->first);
    }
    return keys;
  });
}

std::shared_ptr<Platform::UserDefaults> FakeUserDefaultsProvider::OpenSuite(
    const std::string& name) {
  if (!SupportsSuites() || name.empty()) return nullptr;
  return suites_.With([&](auto& suites) {
    auto& suite = suites[name];
    if (!suite) suite = std::make_shared<FakeUserDefaults>(systemLog_);
    return suite;
  });
}

}  // namespace TestSupport
