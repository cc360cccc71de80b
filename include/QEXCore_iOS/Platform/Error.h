#pragma once

#include <cstdint>
#include <string>

#include "QEXCore_iOS/Platform/Export.h"

namespace Platform {

// The platform's error object: what a public operation writes through its optional `error`
// argument when it fails. It carries no user information beyond the three fields below.
//
// A plain value: copy it freely; use one object on one thread at a time.
class QEXCORE_API Error {
 public:
  // No error has been stored: empty domain, code 0, empty description.
  Error();

  // The description is made from domain and code, as the platform does for an error that carries
  // no user information.
  Error(std::string domain, std::int64_t code);

  // `localizedDescription` is UTF-8, for people.
  Error(std::string domain, std::int64_t code, std::string localizedDescription);

  const std::string& Domain() const;
  std::int64_t Code() const;
  const std::string& LocalizedDescription() const;

  // True when all three fields are equal.
  friend bool operator==(const Error&, const Error&) = default;

 private:
  std::string domain_;
  std::int64_t code_ = 0;
  std::string localizedDescription_;
};

}  // namespace Platform
