#include "EventText.h"

#include <cstdio>

#include <VelmoraCore/EventData.h>
#include <VelmoraCore/Variant.h>

namespace Storefront {
namespace {

using Velmora::Variant;
using Velmora::VariantKind;

constexpr int kDeepestShown = 8;

void Append(std::string& text, const std::shared_ptr<Variant>& variant, int depth);

// Line breaks and the like become blanks, so that an event stays one line.
void AppendQuoted(std::string& text, const std::string& content) {
  text.push_back('"');
  for (const char byte : content) {
    text.push_back(static_cast<unsigned char>(byte) < 0x20 ? ' ' : byte);
  }
  text.push_back('"');
}

void Append(std::string& text, const Velmora::VariantMap& map, int depth) {
  const char* separator = "{";
  for (const auto& [key, value] : map) {
    text.append(separator).append(key).append(": ");
    Append(text, value, depth + 1);
    separator = ", ";
  }
  text.append(map.empty() ? "{}" : "}");
}

void Append(std::string& text, const Velmora::VariantVector& vector, int depth) {
  const char* separator = "[";
  for (const auto& value : vector) {
    text.append(separator);
    Append(text, value, depth + 1);
    separator = ", ";
  }
  text.append(vector.empty() ? "[]" : "]");
}

void Append(std::string& text, const std::shared_ptr<Variant>& variant, int depth) {
  if (!variant) {
    text.append("nothing");
    return;
  }
  switch (variant->GetKind()) {
    case VariantKind::Null:
      text.append("null");
      break;
    case VariantKind::String:
      AppendQuoted(text, variant->GetString());
      break;
    case VariantKind::Integer:
    case VariantKind::Long:
      text.append(std::to_string(variant->GetLong()));
      break;
    case VariantKind::Double:
      text.append(std::to_string(variant->GetDouble()));
      break;
    case VariantKind::Boolean:
      text.append(variant->GetBoolean() ? "true" : "false");
      break;
    case VariantKind::VariantVector:
      depth > kDeepestShown ? (void)text.append("...")
                            : Append(text, variant->GetVariantVector(), depth);
      break;
    case VariantKind::VariantMap:
      depth > kDeepestShown ? (void)text.append("...")
                            : Append(text, variant->GetVariantMap(), depth);
      break;
  }
}

std::string Padded(std::string text, std::size_t width) {
  if (text.size() < width) text.append(width - text.size(), ' ');
  return text;
}

}  // namespace

std::string TextOf(const Velmora::Event& event) {
  std::string number = std::to_string(event.GetNumber());
  if (number.size() < 3) number.insert(0, 3 - number.size(), ' ');
  std::string text = "event " + number + "  " +
                     Padded(event.GetType() + " / " + event.GetSource(), 28) + event.GetName();
  if (const auto data = event.GetData(); data && !data->IsEmpty()) {
    text.append("  ");
    Append(text, data->GetAll(), 0);
  }
  return text;
}

}  // namespace Storefront
