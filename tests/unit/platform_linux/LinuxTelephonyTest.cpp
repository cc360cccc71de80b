#include <chrono>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/LinuxTelephony.h"
#include "support/FakeModemManager.h"
#include "support/PrivateBus.h"
#include "support/ScopedEnvironment.h"
#include "support/TemporaryDirectory.h"

namespace {

using namespace std::chrono_literals;

using Platform::LinuxTelephony;
using TestSupport::FakeModemManager;
using TestSupport::PrivateBus;
using TestSupport::TemporaryDirectory;

constexpr auto kPatience = 10s;      // where an answer is sure to come
constexpr auto kImpatience = 200ms;  // where none will
constexpr auto kAtMost = 5s;         // how long that may take on a busy machine

// How long one look takes that finds nothing.
std::chrono::steady_clock::duration TimeToFindNothing(const LinuxTelephony& telephony) {
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(telephony.CreateNetworkInfo(), nullptr);
  return std::chrono::steady_clock::now() - start;
}

// A socket to which anybody can connect, and which never says a word.
class SilentSocket {
 public:
  SilentSocket() {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, Path().c_str(), sizeof address.sun_path - 1);
    const auto* generic = reinterpret_cast<const sockaddr*>(&address);
    EXPECT_EQ(::bind(socket_.Number(), generic, sizeof address), 0);
    EXPECT_EQ(::listen(socket_.Number(), 8), 0);
  }

  std::string Address() const { return "unix:path=" + Path(); }

 private:
  std::string Path() const { return folder_.PathOf("socket"); }

  TemporaryDirectory folder_;
  Platform::FileDescriptor socket_{::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)};
};

std::optional<std::string> CarrierFor(const std::string& reply) {
  const PrivateBus bus;
  const FakeModemManager service(bus.Address(), reply);
  const auto info = LinuxTelephony(bus.Address(), kPatience).CreateNetworkInfo();
  EXPECT_NE(info, nullptr);
  return info ? info->CarrierName() : std::nullopt;
}

TEST(LinuxTelephony, AsksOnTheSystemBusByItself) {
  const PrivateBus bus;
  const TestSupport::ScopedEnvironment environment("DBUS_SYSTEM_BUS_ADDRESS", bus.Address());
  const FakeModemManager service(bus.Address(),
                                 FakeModemManager::OneModem("{'OperatorName': <'Fake Mobile'>}"));
  const auto info = LinuxTelephony().CreateNetworkInfo();
  ASSERT_NE(info, nullptr);
  EXPECT_EQ(info->CarrierName(), "Fake Mobile");
}

TEST(LinuxTelephony, TakesTheModemThatWasThereFirst) {
  const auto modem = [](int number, const std::string& name) {
    return "objectpath '/org/freedesktop/ModemManager1/Modem/" + std::to_string(number) +
           "': {'org.freedesktop.ModemManager1.Modem': @a{sv} {}, "
           "'org.freedesktop.ModemManager1.Modem.Modem3gpp': {'OperatorName': <'" +
           name + "'>}}";
  };
  EXPECT_EQ(CarrierFor("({" + modem(10, "Tenth") + ", " + modem(9, "Ninth") + ", " +
                       modem(11, "Eleventh") + "},)"),
            "Ninth");
}

TEST(LinuxTelephony, LooksAtModemsOnly) {
  EXPECT_EQ(CarrierFor("({objectpath '/a': {'org.example.Other': {'OperatorName': <'Wrong'>}}, "
                       "objectpath '/modem': {'org.freedesktop.ModemManager1.Modem': @a{sv} {}, "
                       "'org.freedesktop.ModemManager1.Modem.Modem3gpp': "
                       "{'OperatorName': <'Right'>}}},)"),
            "Right");
}

TEST(LinuxTelephony, KnowsNoNameOfAModemThatIsNotRegistered) {
  EXPECT_EQ(CarrierFor(FakeModemManager::OneModem("{'OperatorName': <''>}")), std::nullopt);
}

TEST(LinuxTelephony, TakesNoNameThatIsNoText) {
  EXPECT_EQ(CarrierFor(FakeModemManager::OneModem("{'OperatorName': <7>}")), std::nullopt);
}

TEST(LinuxTelephony, FindsNothingWhereThereIsNoBus) {
  EXPECT_EQ(LinuxTelephony("unix:path=/nowhere/at/all", kPatience).CreateNetworkInfo(), nullptr);
}

TEST(LinuxTelephony, FindsNothingAtAnAddressThatIsNone) {
  for (const char* address : {"x", ":", "unix:", "unknown:key=value", "unix:path", "\xFF"}) {
    EXPECT_EQ(LinuxTelephony(address, kPatience).CreateNetworkInfo(), nullptr) << address;
  }
}

TEST(LinuxTelephony, FindsNothingOnASystemBusThatIsNotThere) {
  const TestSupport::ScopedEnvironment environment("DBUS_SYSTEM_BUS_ADDRESS",
                                                   "unix:path=/nowhere/at/all");
  EXPECT_EQ(LinuxTelephony().CreateNetworkInfo(), nullptr);
}

TEST(LinuxTelephony, FindsNothingWithoutTheService) {
  const PrivateBus bus;
  EXPECT_EQ(LinuxTelephony(bus.Address(), kPatience).CreateNetworkInfo(), nullptr);
}

TEST(LinuxTelephony, FindsNothingWithoutAModem) {
  const PrivateBus bus;
  const FakeModemManager service(bus.Address(), FakeModemManager::NoModem());
  EXPECT_EQ(LinuxTelephony(bus.Address(), kPatience).CreateNetworkInfo(), nullptr);
}

TEST(LinuxTelephony, FindsNothingInAReplyOfAnotherType) {
  for (const char* reply : {"('text',)", "()", "({'a': 1},)", "(@a{oa{sa{sv}}} {}, 7)"}) {
    const PrivateBus bus;
    const FakeModemManager service(bus.Address(), reply);
    EXPECT_EQ(LinuxTelephony(bus.Address(), kPatience).CreateNetworkInfo(), nullptr) << reply;
  }
}

TEST(LinuxTelephony, StartsNoService) {
  const TemporaryDirectory folder;
  const PrivateBus bus("org.freedesktop.ModemManager1",
                       "/usr/bin/touch " + folder.PathOf("started"));
  EXPECT_EQ(LinuxTelephony(bus.Address(), kPatience).CreateNetworkInfo(), nullptr);
  EXPECT_FALSE(std::filesystem::exists(folder.PathOf("started")));
}

TEST(LinuxTelephony, GivesUpOnAServiceThatDoesNotAnswer) {
  const PrivateBus bus;
  const FakeModemManager service(bus.Address(), FakeModemManager::NoModem(),
                                 FakeModemManager::Manner::StaysSilent);
  EXPECT_LT(TimeToFindNothing(LinuxTelephony(bus.Address(), kImpatience)), kAtMost);
}

TEST(LinuxTelephony, GivesUpOnABusThatDoesNotAnswer) {
  const SilentSocket socket;
  EXPECT_LT(TimeToFindNothing(LinuxTelephony(socket.Address(), kImpatience)), kAtMost);
}

TEST(LinuxTelephony, RunsNothingOfTheCallersOwnContextWhileItWaits) {
  bool ran = false;
  GMainContext* context = g_main_context_default();
  GSource* idle = g_idle_source_new();
  g_source_set_callback(
      idle,
      [](gpointer flag) -> gboolean {
        *static_cast<bool*>(flag) = true;
        return G_SOURCE_REMOVE;
      },
      &ran, nullptr);
  g_source_attach(idle, context);
  const PrivateBus bus;
  const FakeModemManager service(bus.Address(), FakeModemManager::NoModem());
  EXPECT_EQ(LinuxTelephony(bus.Address(), kPatience).CreateNetworkInfo(), nullptr);
  EXPECT_FALSE(ran);
  EXPECT_EQ(g_main_context_get_thread_default(), nullptr);
  g_source_destroy(idle);
  g_source_unref(idle);
}

}  // namespace
