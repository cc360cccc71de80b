#include "SampleValues.h"

#include <stdexcept>

#include "QEXCore_iOS/Platform/Host.h"

namespace Benchmarks {
namespace {

using Platform::Value;

std::string TextOf(const Value& value) {
  const auto text = Platform::Host::Current()->jsonSerialization->Serialize(
      value, Platform::JsonLayout::Compact, nullptr);
  if (!text) throw std::logic_error("the sample is no JSON");
  return *text;
}

Value Record(int number) {
  return {{"id", 100'000 + number},
          {"name", "Walking shoe, model " + std::to_string(number)},
          {"price", 19.9 + number * 0.25},
          {"available", number % 3 != 0},
          {"tags", Value::Array({"shoes", "outdoor", "grün"})},
          {"stock", {{"warehouse", "north"}, {"count", number * 7}}}};
}

}  // namespace

Value SampleValue(std::size_t bytes) {
  const std::size_t perRecord = TextOf(Record(1)).size();
  Value records = Value::Array();
  for (std::size_t length = 0; length + perRecord / 2 < bytes; length += perRecord) {
    records.Append(Record(static_cast<int>(records.Count())));
  }
  return {{"session", "8b1f0c52"}, {"records", records}};
}

std::string SampleJson(std::size_t bytes) { return TextOf(SampleValue(bytes)); }

}  // namespace Benchmarks
