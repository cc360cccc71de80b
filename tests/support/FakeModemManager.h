#pragma once

#include <string>

#include <gio/gio.h>

#include "support/FakeBusService.h"

namespace TestSupport {

// The modem service, on a bus of the test's choice, from construction to destruction.
class FakeModemManager {
 public:
  enum class Manner { Answers, StaysSilent };

  // `reply` is what the service answers when it is asked for its objects: a GVariant text, as a
  // rule of the type (a{oa{sa{sv}}}). Throws std::runtime_error when the service cannot get onto
  // the bus.
  FakeModemManager(const std::string& busAddress, const std::string& reply,
                   Manner manner = Manner::Answers);

  // The reply of a service without a modem.
  static std::string NoModem();

  // The reply of a service with one modem, whose 3GPP properties are these ("{'Name': <'value'>}").
  static std::string OneModem(const std::string& properties3gpp);

  // The reply of a service with one modem that is not of the 3GPP family.
  static std::string OneModemWithout3gpp();

 private:
  void Answer(GDBusMethodInvocation* invocation) const;

  const std::string reply_;
  const Manner manner_;
  const FakeBusService service_;  // last: it is called as long as it lives
};

}  // namespace TestSupport
