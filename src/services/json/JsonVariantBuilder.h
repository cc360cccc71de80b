#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "QEXCore_iOS/Platform/JsonSerialization.h"
#include "VelmoraCore/Variant.h"

namespace Velmora {

// Makes variants of the JSON that it hears, as ToVariantMap and ToVariantVector would make them of
// the value of the same text, without the value; where keys hold no zero byte.
class JsonVariantBuilder final : public Platform::JsonVisitor {
 public:
  JsonVariantBuilder();

  // Takes the root, which must have been heard to its end; nothing when it is of the other kind.
  std::optional<VariantMap> TakeMap();
  std::optional<VariantVector> TakeVector();

  void BeginObject() override;
  void EndObject() override;
  void BeginArray() override;
  void EndArray() override;
  void Key(std::string_view key) override;
  void String(std::string_view text) override;
  void Integer(std::int64_t number) override;
  void Double(double number) override;
  void Boolean(bool value) override;
  void Null() override;

 private:
  // A container that has not ended. Its map's nodes stay where they are when the map is moved.
  struct Level {
    bool isObject = false;
    VariantMap members;
    VariantVector elements;
    std::shared_ptr<Variant>* member = nullptr;  // that waits for its value
  };

  void Add(std::shared_ptr<Variant> value);

  std::vector<Level> levels_;
  std::optional<VariantMap> map_;
  std::optional<VariantVector> vector_;

  // Variants do not change, so one of each serves the whole text.
  std::shared_ptr<Variant> true_;
  std::shared_ptr<Variant> false_;
  std::shared_ptr<Variant> null_;
};

}  // namespace Velmora
