#pragma once

#include <type_traits>
#include <utility>
#include <variant>

namespace Velmora {

// A value, or the error that came in its place. Built from either; behaves as its content does
// under copying and threads. `T` and `E` must be different types.
template <class T, class E>
class [[nodiscard]] Expected {
  static_assert(!std::is_same_v<T, E>, "a value and an error must be told apart by their type");

 public:
  using ValueType = T;
  using ErrorType = E;

  Expected(T value) : content_(std::in_place_index<0>, std::move(value)) {}
  Expected(E error) : content_(std::in_place_index<1>, std::move(error)) {}

  bool HasValue() const noexcept { return content_.index() == 0; }
  explicit operator bool() const noexcept { return HasValue(); }

  // Both throw std::bad_variant_access when the other one is there.
  const T& GetValue() const& { return std::get<0>(content_); }
  T GetValue() && { return std::get<0>(std::move(content_)); }
  const E& GetError() const& { return std::get<1>(content_); }
  E GetError() && { return std::get<1>(std::move(content_)); }

  T ValueOr(T fallback) const {
    const T* value = std::get_if<0>(&content_);
    return value != nullptr ? *value : std::move(fallback);
  }

 private:
  std::variant<T, E> content_;
};

}  // namespace Velmora
