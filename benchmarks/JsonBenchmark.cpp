// JSON text to a tree of variants and back to pretty text: ours beside two rivals that build the
// very same tree with their SAX readers and write it with their own writers.

#include <cmath>
#include <stdexcept>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>
#include <rapidjson/prettywriter.h>
#include <rapidjson/reader.h>
#include <rapidjson/stringbuffer.h>

#include "SampleValues.h"
#include "VelmoraCore/JsonObject.h"
#include "VelmoraCore/JsonUtilityServiceInterface.h"
#include "VelmoraCore/Variant.h"
#include "services/json/NativeJsonUtilityService.h"

namespace {

using Velmora::Variant;
using Velmora::VariantKind;
using Velmora::VariantMap;
using Velmora::VariantVector;
using VariantPointer = std::shared_ptr<Variant>;

// Gathers what a SAX reader reports into variants.
class TreeBuilder {
 public:
  bool Open(bool isMap) {
    open_.push_back({isMap, std::move(key_), {}, {}});
    key_.clear();
    return true;
  }
  bool Close() {
    Container done = std::move(open_.back());
    open_.pop_back();
    key_ = std::move(done.key);
    return Put(done.isMap ? Variant::FromVariantMap(std::move(done.map))
                          : Variant::FromVariantVector(std::move(done.vector)));
  }
  bool SetKey(std::string key) {
    key_ = std::move(key);
    return true;
  }
  bool Put(VariantPointer value) {
    if (open_.empty()) {
      root_ = std::move(value);
    } else if (open_.back().isMap) {
      open_.back().map.insert_or_assign(std::move(key_), std::move(value));
    } else {
      open_.back().vector.push_back(std::move(value));
    }
    return true;
  }
  VariantPointer TakeRoot() { return std::move(root_); }

 private:
  struct Container {
    bool isMap;
    std::string key;
    VariantMap map;
    VariantVector vector;
  };
  std::vector<Container> open_;
  std::string key_;
  VariantPointer root_;
};

struct NlohmannSax : nlohmann::json_sax<nlohmann::json> {
  TreeBuilder tree;

  bool null() override { return tree.Put(Variant::FromNull()); }
  bool boolean(bool value) override { return tree.Put(Variant::FromBoolean(value)); }
  bool number_integer(number_integer_t value) override {
    return tree.Put(Variant::FromLong(value));
  }
  bool number_unsigned(number_unsigned_t value) override {
    return tree.Put(std::in_range<long long>(value)
                        ? Variant::FromLong(static_cast<long long>(value))
                        : Variant::FromDouble(static_cast<double>(value)));
  }
  bool number_float(number_float_t value, const string_t& /*text*/) override {
    return tree.Put(Variant::FromDouble(value));
  }
  bool string(string_t& text) override { return tree.Put(Variant::FromString(std::move(text))); }
  bool binary(binary_t& /*bytes*/) override { return false; }
  bool start_object(std::size_t /*elements*/) override { return tree.Open(true); }
  bool key(string_t& text) override { return tree.SetKey(std::move(text)); }
  bool end_object() override { return tree.Close(); }
  bool start_array(std::size_t /*elements*/) override { return tree.Open(false); }
  bool end_array() override { return tree.Close(); }
  bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                   const nlohmann::json::exception& /*error*/) override {
    return false;
  }
};

struct RapidjsonSax : rapidjson::BaseReaderHandler<rapidjson::UTF8<>, RapidjsonSax> {
  TreeBuilder tree;

  bool Null() { return tree.Put(Variant::FromNull()); }
  bool Bool(bool value) { return tree.Put(Variant::FromBoolean(value)); }
  bool Int(int value) { return tree.Put(Variant::FromLong(value)); }
  bool Uint(unsigned value) { return tree.Put(Variant::FromLong(value)); }
  bool Int64(std::int64_t value) { return tree.Put(Variant::FromLong(value)); }
  bool Uint64(std::uint64_t value) {
    return tree.Put(std::in_range<long long>(value)
                        ? Variant::FromLong(static_cast<long long>(value))
                        : Variant::FromDouble(static_cast<double>(value)));
  }
  bool Double(double value) { return tree.Put(Variant::FromDouble(value)); }
  bool String(const char* text, rapidjson::SizeType length, bool /*copy*/) {
    return tree.Put(Variant::FromString(std::string(text, length)));
  }
  bool StartObject() { return tree.Open(true); }
  bool Key(const char* text, rapidjson::SizeType length, bool /*copy*/) {
    return tree.SetKey(std::string(text, length));
  }
  bool EndObject(rapidjson::SizeType /*members*/) { return tree.Close(); }
  bool StartArray() { return tree.Open(false); }
  bool EndArray(rapidjson::SizeType /*elements*/) { return tree.Close(); }
};

nlohmann::json NlohmannTreeOf(const Variant& variant) {
  switch (variant.GetKind()) {
    case VariantKind::String:
      return variant.GetString();
    case VariantKind::Integer:
    case VariantKind::Long:
      return variant.GetLong();
    case VariantKind::Double:
      return variant.GetDouble();
    case VariantKind::Boolean:
      return variant.GetBoolean();
    case VariantKind::VariantVector: {
      auto array = nlohmann::json::array();
      for (const auto& item : variant.GetVariantVector()) array.push_back(NlohmannTreeOf(*item));
      return array;
    }
    case VariantKind::VariantMap: {
      auto object = nlohmann::json::object();
      for (const auto& [key, value] : variant.GetVariantMap()) object[key] = NlohmannTreeOf(*value);
      return object;
    }
    case VariantKind::Null:
      break;
  }
  return nullptr;
}

using RapidjsonWriter = rapidjson::PrettyWriter<rapidjson::StringBuffer>;

void WriteString(RapidjsonWriter& writer, const std::string& text) {
  writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

void Write(RapidjsonWriter& writer, const Variant& variant) {
  switch (variant.GetKind()) {
    case VariantKind::Null:
      writer.Null();
      break;
    case VariantKind::String:
      WriteString(writer, variant.GetString());
      break;
    case VariantKind::Integer:
    case VariantKind::Long:
      writer.Int64(variant.GetLong());
      break;
    case VariantKind::Double:
      writer.Double(variant.GetDouble());
      break;
    case VariantKind::Boolean:
      writer.Bool(variant.GetBoolean());
      break;
    case VariantKind::VariantVector:
      writer.StartArray();
      for (const auto& item : variant.GetVariantVector()) Write(writer, *item);
      writer.EndArray();
      break;
    case VariantKind::VariantMap:
      writer.StartObject();
      for (const auto& [key, value] : variant.GetVariantMap()) {
        writer.Key(key.data(), static_cast<rapidjson::SizeType>(key.size()));
        Write(writer, *value);
      }
      writer.EndObject();
      break;
  }
}

std::string NlohmannRoundTrip(const std::string& text) {
  NlohmannSax handler;
  if (!nlohmann::json::sax_parse(text, &handler)) throw std::logic_error("refused");
  return NlohmannTreeOf(*handler.tree.TakeRoot()).dump(4);
}

std::string RapidjsonRoundTrip(const std::string& text) {
  RapidjsonSax handler;
  rapidjson::StringStream stream(text.c_str());
  rapidjson::Reader reader;
  // As strict as the others are with numbers and UTF-8; unlike them its writer checks nothing.
  constexpr unsigned kFlags =
      rapidjson::kParseFullPrecisionFlag | rapidjson::kParseValidateEncodingFlag;
  if (reader.Parse<kFlags>(stream, handler).IsError()) {
    throw std::logic_error("refused");
  }
  rapidjson::StringBuffer buffer;
  RapidjsonWriter writer(buffer);
  Write(writer, *handler.tree.TakeRoot());
  return {buffer.GetString(), buffer.GetSize()};
}

std::string OurRoundTrip(const std::string& text) {
  static const auto service = Velmora::CreateNativeJsonUtilityService();
  return service->CreateJsonObject(text)->ToString();
}

template <std::string (*RoundTrip)(const std::string&)>
void Measure(benchmark::State& state) {
  const std::string text = Benchmarks::SampleJson(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(RoundTrip(text));
  state.SetBytesProcessed(static_cast<std::int64_t>(text.size()) * state.iterations());
}

BENCHMARK(Measure<OurRoundTrip>)->Name("JsonOurs")->Arg(500)->Arg(5'000)->Arg(100'000);
BENCHMARK(Measure<NlohmannRoundTrip>)->Name("JsonNlohmann")->Arg(500)->Arg(5'000)->Arg(100'000);
BENCHMARK(Measure<RapidjsonRoundTrip>)->Name("JsonRapidjson")->Arg(500)->Arg(5'000)->Arg(100'000);

}  // namespace
