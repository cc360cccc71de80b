#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "QEXCore_iOS/Platform/Export.h"
#include "QEXCore_iOS/Platform/Value.h"

namespace Platform {

// A point in time, as a platform object. Never changes once made; may be read on any thread.
class QEXCORE_API Date final : public Object {
 public:
  // Seconds since 1970-01-01 00:00:00 UTC; any double, fractions included.
  explicit Date(double secondsSince1970);
  ~Date() override;

  double SecondsSince1970() const;

  // "2024-02-29 12:30:00 +0000"; the plain number of seconds where the calendar does not reach.
  std::string Description() const override;

  // True when `other` is a date of the same number of seconds.
  bool Equals(const Object& other) const override;
  std::size_t Hash() const noexcept override;

 private:
  double secondsSince1970_;
};

}  // namespace Platform
