#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "VelmoraCore/Core.h"

namespace TestSupport {

// Takes the place of the core when a test program links QEXCoreRecordingCore instead of the event
// hub: Velmora::Core then does nothing but record its calls, with their arguments, in one journal
// for the whole process, and act as the test has scripted it. It starts no work and leaves the log
// sink alone. Safe from any thread.
class RecordingCore {
 public:
  struct Call {
    // The operation of Velmora::Core: "Create", "Track", "Dispose".
    std::string operation{};
    const Velmora::Core* core = nullptr;  // null for Create
    std::thread::id thread{};

    // The arguments; those that the operation does not have stay empty.
    std::string text{};
    Velmora::StringMap strings{};
    Velmora::VariantMap variants{};
    std::optional<Velmora::MobilePrivacyStatus> privacyStatus{};
    std::shared_ptr<Velmora::EventData> eventData{};  // a copy
    std::shared_ptr<Velmora::Event> event{};
    std::shared_ptr<Velmora::Event> requestEvent{};
    std::shared_ptr<Velmora::ExternalModuleInterface> module{};
    std::weak_ptr<Velmora::PlatformServicesInterface> services{};
    std::shared_ptr<Velmora::EventHub> eventHub{};
  };

  enum class Thrown { SdkError, RuntimeError, Int };
  enum class Delivery { AtOnce, OnAnotherThread };

  RecordingCore() = delete;

  static std::vector<Call> Calls();

  // The calls so far, which are then forgotten.
  static std::vector<Call> TakeCalls();

  // The names of the operations called so far, in order.
  static std::vector<std::string> Operations();

  // The core that Create made last; empty when there is none or it is gone.
  static std::shared_ptr<Velmora::Core> LastCreated();

  // Forgets calls and script, once everything under way has been delivered.
  static void Reset();

  // From now on every call of `operation` throws, after it has been recorded and before it does
  // anything else. The SdkError has the code "test.scripted"; the texts are "scripted".
  static void ThrowFrom(const std::string& operation, Thrown thrown);
  static void ThrowFromNothing();

  // Called by Create, once it has been recorded.
  static void OnCreate(std::function<void()> hook);

  // What the callbacks are given. Empty and Unknown unless set.
  static void SetIdentities(std::string identities);
  static void SetPrivacyStatus(Velmora::MobilePrivacyStatus status);

  // From now on every operation with an error function calls it before it returns; an empty code
  // ends that.
  static void RejectWith(std::string errorCode);

  // The event that DispatchEventWithResponseCallback answers with; empty, as at first, means none.
  static void RespondWith(std::shared_ptr<Velmora::Event> response);

  // Where callbacks are called: inside the operation, as at first, or on a thread of the double.
  static void SetDelivery(Delivery delivery);

  // Returns once every callback that is under way on another thread has returned.
  static void WaitForDeliveries();
};

}  // namespace TestSupport
