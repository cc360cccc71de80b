#pragma once

#include "VelmoraCore/JsonType.h"
#include "VelmoraCore/Variant.h"

// Tells which JSON type a variant has, by its kind. May be called on any thread.
class KRVJsonType {
 public:
  KRVJsonType() = delete;

  // JsonType::Null for a kind that is not among those of VariantKind.
  static Velmora::JsonType Get(Velmora::VariantKind kind);
};
