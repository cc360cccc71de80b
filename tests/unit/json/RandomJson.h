#pragma once

#include <cstdint>
#include <memory>
#include <random>
#include <string>

#include "VelmoraCore/Variant.h"

namespace Velmora {

// JSON texts and trees of variants, the same for the same seed.
class RandomJson {
 public:
  enum class Content {
    Anything,          // also what the platform has no value for, and keys that fall together
    OnlyWhatComesBack  // what is the same after it was written and read
  };

  explicit RandomJson(std::uint64_t seed, Content content = Content::Anything);

  // Well-formed, with white space, escapes and numbers in many forms.
  std::string ObjectText();
  std::string ArrayText();

  VariantMap Map();
  VariantVector Vector();

 private:
  std::uint64_t Below(std::uint64_t limit);
  bool OneIn(std::uint64_t count) { return Below(count) == 0; }

  std::string Space();
  std::string StringText();
  std::string NumberText();
  std::string ValueText(int depth);
  std::string ObjectText(int depth);
  std::string ArrayText(int depth);

  std::string Characters();
  std::shared_ptr<Variant> Value(int depth);
  VariantMap Map(int depth);
  VariantVector Vector(int depth);

  std::mt19937_64 random_;
  const Content content_;
};

}  // namespace Velmora
