#include "services/ui/KRVAlertHandler.h"

#include <mutex>
#include <utility>

#include "QEXCore_iOS/Platform/Host.h"
#include "VelmoraCore/Log.h"
#include "VelmoraCore/TryCatch.h"
#include "services/ui/AppUi.h"
#include "services/ui/MainQueueWork.h"

using Velmora::Log;
using Velmora::SdkError;

namespace {

constexpr const char* kLogTag = "KRVAlertHandler";

// Containers of an application never nest that deep, unless they contain one another in a ring.
constexpr int kDeepestContainer = 1000;

bool IsPresent(const std::optional<std::string>& text) { return text && !text->empty(); }

// The controller that stands for `controller`; itself when it does so itself.
std::shared_ptr<Platform::ViewController> Next(
    const std::shared_ptr<Platform::ViewController>& controller) {
  if (auto presented = controller->PresentedViewController()) return presented;
  const Platform::ContainerKind kind = controller->Kind();
  if (kind == Platform::ContainerKind::None) return controller;
  const auto contained = controller->ViewControllers();
  if (contained.empty()) return controller;
  switch (kind) {
    case Platform::ContainerKind::Split:
      return contained.back();
    case Platform::ContainerKind::Navigation:
      return controller->TopViewController();
    case Platform::ContainerKind::TabBar:
      return controller->SelectedViewController();
    case Platform::ContainerKind::Page:
      return contained.front();
    case Platform::ContainerKind::None:
      break;
  }
  return controller;
}

}  // namespace

struct KRVAlertHandler::Request {
  Text title;
  Text message;
  Text positiveButtonText;
  Text negativeButtonText;
  Listener listener;
  std::shared_ptr<KRVMessagesMonitor> messagesMonitor;
};

struct KRVAlertHandler::Slots {
  std::mutex mutex;
  std::shared_ptr<const Request> current;  // the newest request
  std::shared_ptr<const Request> shown;    // the newest whose alert was put on screen
};

bool KRVAlertHandler::isUiAlertControllerSupported() {
  return Platform::Host::Current()->ui->SupportsAlertController();
}

void KRVAlertHandler::showWithTitle(const Text& title, const Text& message,
                                    const Text& positiveButtonText, const Text& negativeButtonText,
                                    const Listener& listener,
                                    const std::shared_ptr<KRVMessagesMonitor>& messagesMonitor) {
  auto request = std::make_shared<const Request>(
      Request{title, message, positiveButtonText, negativeButtonText, listener, messagesMonitor});
  auto former = request;
  {
    Slots& slots = TheSlots();
    const std::lock_guard lock(slots.mutex);
    slots.current.swap(former);  // the former listener goes without the lock
  }
  Velmora::OnMainQueue([request = std::move(request)] { Show(request); });
}

std::shared_ptr<Platform::ViewController> KRVAlertHandler::findBestViewController(
    std::shared_ptr<Platform::ViewController> controller) {
  for (int depth = 0; controller != nullptr && depth < kDeepestContainer; ++depth) {
    auto next = Next(controller);
    if (next == controller) break;
    controller = std::move(next);
  }
  return controller;
}

void KRVAlertHandler::onShow() {
  const auto request = Shown();
  if (!request) return;
  request->messagesMonitor->displayed();
  if (request->listener) request->listener->OnShow();
}

void KRVAlertHandler::onDismiss() {
  const auto request = Shown();
  if (!request) return;
  SetShown(nullptr);
  request->messagesMonitor->dismissed();
  if (request->listener) request->listener->OnDismiss();
}

void KRVAlertHandler::alertView(int clickedButtonAtIndex) {
  if (clickedButtonAtIndex == 1) RespondPositively();
  if (clickedButtonAtIndex == 0) RespondNegatively();
}

// Never destroyed: alerts may be asked for until the process ends.
KRVAlertHandler::Slots& KRVAlertHandler::TheSlots() {
  static auto* slots = new Slots;
  return *slots;
}

std::shared_ptr<const KRVAlertHandler::Request> KRVAlertHandler::Shown() {
  Slots& slots = TheSlots();
  const std::lock_guard lock(slots.mutex);
  return slots.shown;
}

void KRVAlertHandler::SetShown(const std::shared_ptr<const Request>& request) {
  auto former = request;
  Slots& slots = TheSlots();
  const std::lock_guard lock(slots.mutex);
  slots.shown.swap(former);
}

void KRVAlertHandler::Show(const std::shared_ptr<const Request>& request) {
  if (request->messagesMonitor->isDisplayed()) {
    Log::Debug("AlertMessage", "Failed to show alert, another message is displayed at this time");
    return;
  }
  bool isModern = true;
  Velmora::TrySwallow([&] { isModern = isUiAlertControllerSupported(); });
  Velmora::TryCatch([&] { isModern ? PresentController(request) : ShowAlertView(request); },
                    [&](SdkError&) {
                      Log::Error(kLogTag, "%s",
                                 isModern ? "Unable to show alert" : "Unable to show UIAlertView");
                    });
}

void KRVAlertHandler::PresentController(const std::shared_ptr<const Request>& request) {
  const auto alert =
      Platform::Host::Current()->ui->CreateAlertController(request->title, request->message);
  if (IsPresent(request->positiveButtonText)) {
    alert->AddAction(*request->positiveButtonText, Platform::AlertActionStyle::Default,
                     &RespondPositively);
  }
  if (IsPresent(request->negativeButtonText)) {
    alert->AddAction(*request->negativeButtonText, Platform::AlertActionStyle::Cancel,
                     &RespondNegatively);
  }
  alert->OnDismissedWithoutAction(&onDismiss);
  const auto window = Velmora::AppUi::GetKeyWindow();
  if (!window) return;
  const auto controller = findBestViewController(window->RootViewController());
  if (!controller || !controller->IsViewLoaded()) return;
  controller->Present(alert, true);
  SetShown(request);
  onShow();
}

void KRVAlertHandler::ShowAlertView(const std::shared_ptr<const Request>& request) {
  const auto button = [](const Text& text) { return IsPresent(text) ? text : std::nullopt; };
  const auto view = Platform::Host::Current()->ui->CreateAlertView(
      {.title = request->title,
       .message = request->message,
       .cancelButtonTitle = button(request->negativeButtonText),
       .otherButtonTitle = button(request->positiveButtonText),
       .clickedButtonAtIndex = &alertView});
  view->Show();
  SetShown(request);
  onShow();
}

void KRVAlertHandler::RespondPositively() {
  Respond([](Velmora::AlertListenerInterface& listener) { listener.OnPositiveResponse(); });
}

void KRVAlertHandler::RespondNegatively() {
  Respond([](Velmora::AlertListenerInterface& listener) { listener.OnNegativeResponse(); });
}

// The alert has gone, whatever its listener does.
void KRVAlertHandler::Respond(
    const std::function<void(Velmora::AlertListenerInterface&)>& respond) {
  const auto request = Shown();
  Velmora::TryCatch(
      [&] {
        if (request && request->listener) respond(*request->listener);
      },
      [](SdkError& error) { Log::Error(kLogTag, "An alert's listener failed: %s", error.what()); });
  onDismiss();
}
