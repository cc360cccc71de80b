#include "support/PrivateBus.h"

#include <stdexcept>

namespace TestSupport {
namespace {

std::string Configuration(const TemporaryDirectory& folder) {
  return "<busconfig>"
         "<type>session</type>"
         "<listen>unix:path=" +
         folder.PathOf("socket") +
         "</listen>"
         "<servicedir>" +
         folder.PathOf("services") +
         "</servicedir>"
         "<policy context='default'>"
         "<allow send_destination='*' eavesdrop='true'/>"
         "<allow eavesdrop='true'/>"
         "<allow own='*'/>"
         "</policy>"
         "</busconfig>";
}

// The first line that the program writes, without its end.
std::string FirstLineOf(GSubprocess* program) {
  const Platform::GObjectPointer<GDataInputStream> output(
      g_data_input_stream_new(g_subprocess_get_stdout_pipe(program)));
  const Platform::GCharPointer line(
      g_data_input_stream_read_line(output.get(), nullptr, nullptr, nullptr));
  return line ? line.get() : "";
}

}  // namespace

PrivateBus::PrivateBus() {
  folder_.WriteFile("services/none", "");
  Start();
}

PrivateBus::PrivateBus(const std::string& startableService, const std::string& command) {
  folder_.WriteFile("services/" + startableService + ".service",
                    "[D-BUS Service]\nName=" + startableService + "\nExec=" + command + "\n");
  Start();
}

void PrivateBus::Start() {
  const std::string configuration =
      "--config-file=" + folder_.WriteFile("bus.conf", Configuration(folder_));
  constexpr auto kFlags = static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDOUT_PIPE |
                                                        G_SUBPROCESS_FLAGS_STDERR_SILENCE);
  daemon_.reset(g_subprocess_new(kFlags, nullptr, "dbus-daemon", "--nofork", "--print-address",
                                 configuration.c_str(), nullptr));
  if (daemon_) address_ = FirstLineOf(daemon_.get());
  if (address_.empty()) throw std::runtime_error("dbus-daemon does not start");
}

PrivateBus::~PrivateBus() {
  g_subprocess_force_exit(daemon_.get());
  g_subprocess_wait(daemon_.get(), nullptr, nullptr);
}

}  // namespace TestSupport
