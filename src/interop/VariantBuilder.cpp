#include "interop/VariantBuilder.h"

#include <utility>

#include "interop/StringConversion.h"

namespace Velmora {
namespace {

using Platform::NumberType;
using Platform::Value;

bool IsContainer(const Value& value) { return value.IsArray() || value.IsDictionary(); }

std::shared_ptr<Variant> VariantOfNumber(const Value& number) {
  switch (*number.StorageType()) {
    case NumberType::SInt8:
    case NumberType::SInt16:
    case NumberType::SInt32:
    case NumberType::Short:
    case NumberType::Int:
    case NumberType::NSInteger:
      return Variant::FromInteger(number.AsInt32());
    case NumberType::Float32:
    case NumberType::Float64:
    case NumberType::Float:
    case NumberType::Double:
    case NumberType::CGFloat:
      return Variant::FromDouble(number.AsDouble());
    case NumberType::SInt64:
    case NumberType::Long:
    case NumberType::LongLong:
      return Variant::FromLong(number.AsInt64());
    case NumberType::Char:
    case NumberType::CFIndex:
      break;
  }
  return nullptr;
}

std::shared_ptr<Variant> VariantOfScalar(const Value& value) {
  if (value.IsString()) return Variant::FromString(value.AsString());
  if (value.IsBoolean()) return Variant::FromBoolean(value.AsBool());
  if (value.IsNumber()) return VariantOfNumber(value);
  if (value.IsNull()) return Variant::FromNull();
  return nullptr;
}

}  // namespace

std::shared_ptr<Variant> VariantBuilder::Build(const Value& value) {
  if (!IsContainer(value)) return VariantOfScalar(value);
  Run(value);
  return Close(frames_.back());
}

VariantMap VariantBuilder::BuildMap(const Value& dictionary) {
  if (!dictionary.IsDictionary()) return {};
  Run(dictionary);
  return std::move(frames_.back().map);
}

VariantVector VariantBuilder::BuildVector(const Value& array) {
  if (!array.IsArray()) return {};
  Run(array);
  return std::move(frames_.back().vector);
}

// Leaves the outermost container's frame, complete, for the caller to take the result from.
void VariantBuilder::Run(const Value& outermost) {
  Open(outermost, nullptr);
  while (true) {
    const bool metContainer = frames_.back().source->IsArray() ? ContinueVector() : ContinueMap();
    if (metContainer) continue;
    if (frames_.size() == 1) return;
    Frame& done = frames_.back();
    *done.destination = Close(done);
    frames_.pop_back();
  }
}

void VariantBuilder::Open(const Value& container, std::shared_ptr<Variant>* destination) {
  Frame& frame = frames_.emplace_back();
  frame.source = &container;
  frame.destination = destination;
  if (container.IsArray()) {
    // Elements must stay where they are while frames above point at them.
    frame.vector.resize(container.Count());
  } else {
    const Platform::DictionaryEntries entries = container.Entries();
    frame.entry = entries.begin();
    frame.lastEntry = entries.end();
  }
}

bool VariantBuilder::ContinueVector() {
  Frame& frame = frames_.back();
  const auto items = frame.source->Items();
  while (frame.position < items.size()) {
    const std::size_t position = frame.position++;
    if (Convert(items[position], frame.vector[position])) return true;
  }
  return false;
}

bool VariantBuilder::ContinueMap() {
  Frame& frame = frames_.back();
  while (frame.entry != frame.lastEntry) {
    const Platform::DictionaryEntry& entry = *frame.entry;
    ++frame.entry;
    if (Convert(entry.value, frame.map[ToCppString(entry.key)])) return true;
  }
  return false;
}

bool VariantBuilder::Convert(const Value& value, std::shared_ptr<Variant>& destination) {
  if (IsContainer(value)) {
    Open(value, &destination);
    return true;
  }
  destination = VariantOfScalar(value);
  return false;
}

std::shared_ptr<Variant> VariantBuilder::Close(Frame& frame) {
  return frame.source->IsArray() ? Variant::FromVariantVector(std::move(frame.vector))
                                 : Variant::FromVariantMap(std::move(frame.map));
}

}  // namespace Velmora
