#include "services/ui/KRVFloatingButtonHandler.h"

#include <chrono>
#include <string>
#include <string_view>
#include <utility>

#include "QEXCore_iOS/Platform/Host.h"
#include "VelmoraCore/Log.h"
#include "VelmoraCore/TryCatch.h"
#include "services/ui/AppUi.h"
#include "services/ui/FloatingButtonPicture.h"
#include "services/ui/MainQueueWork.h"

using Platform::Host;
using Platform::Rect;
using Velmora::Log;
using Velmora::SdkError;

namespace {

constexpr const char* kLogTag = "FloatingButton";
constexpr double kSize = 60;
constexpr double kMargin = 15;
constexpr std::chrono::milliseconds kAppearingTime{300};
constexpr std::chrono::milliseconds kFrontInterval{200};

Rect KeyWindowFrame() {
  const auto window = Velmora::AppUi::GetKeyWindow();
  return window ? window->Frame() : Rect{};
}

bool IsBase64(char character) {
  return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z') ||
         (character >= '0' && character <= '9') || character == '+' || character == '/' ||
         character == '=';
}

// The bytes of the picture; characters that are not base64 are passed over.
std::string DecodePicture(std::string_view text) {
  std::string plain;
  for (const char character : text) {
    if (IsBase64(character)) plain += character;
  }
  return Host::Current()->base64->Decode(plain).value_or("");
}

}  // namespace

KRVFloatingButtonHandler::KRVFloatingButtonHandler(Listener listener)
    : listener_(std::move(listener)) {}

KRVFloatingButtonHandler::~KRVFloatingButtonHandler() = default;

void KRVFloatingButtonHandler::display() {
  isDisplayed_ = true;
  Velmora::OnMainQueue([self = shared_from_this()] {
    Velmora::TryCatch([&] { self->Build(); },
                      [](SdkError& error) {
                        Log::Debug(kLogTag, "Unable to display (%s)", error.GetMessage().c_str());
                      });
  });
}

void KRVFloatingButtonHandler::remove() {
  if (!isDisplayed_.exchange(false)) return;
  Velmora::OnMainQueue([self = shared_from_this()] {
    Velmora::TryCatch([&] { self->TakeAway(); },
                      [](SdkError& error) {
                        Log::Debug(kLogTag, "Unable to remove (%s)", error.GetMessage().c_str());
                      });
  });
}

Rect KRVFloatingButtonHandler::getImageFrame() {
  const Rect window = KeyWindowFrame();
  return {.x = window.width - kSize - kMargin,
          .y = (window.height - kSize) / 2,
          .width = kSize,
          .height = kSize};
}

void KRVFloatingButtonHandler::panWasRecognized(Platform::PanGestureRecognizer& panner) {
  const Platform::Point by = panner.TranslationInSuperview();
  if (buttonImageView_) {
    Rect frame = buttonImageView_->Frame();
    frame.x += by.x;
    frame.y += by.y;
    buttonImageView_->SetFrame(frame);
  }
  panner.SetTranslationInSuperview({});
  if (listener_) listener_->OnPanDetected();
}

void KRVFloatingButtonHandler::tapDetected() {
  if (listener_) listener_->OnTapDetected();
}

void KRVFloatingButtonHandler::bringFloatingButtonToFront() {
  if (window_) window_->BringSubviewToFront(buttonImageView_);
}

void KRVFloatingButtonHandler::Build() {
  TakeAway();
  const auto ui = Host::Current()->ui;
  buttonImageView_ = ui->CreateImageView(
      {.look = {.frame = getImageFrame(),
                .isOpaque = true,
                .hasClearBackground = true,
                .autoresizingMask = Platform::kFlexibleWidth | Platform::kFlexibleHeight},
       .scalesToFit = true,
       .isUserInteractionEnabled = true,
       .image = DecodePicture(Velmora::kFloatingButtonPicture)});
  AddGestures(*ui);
  window_ = Velmora::AppUi::GetKeyWindow();
  if (window_) window_->AddSubview(buttonImageView_);
  bringFloatingButtonToFront();
  buttonImageView_->SetAlpha(0);
  ui->Animate(
      kAppearingTime, [view = buttonImageView_] { view->SetAlpha(1); }, nullptr);
  KeepInFront();
  rotationWatch_ = ui->WatchRotation([self = weak_from_this()] {
    if (const auto handler = self.lock()) handler->Recenter();
  });
}

void KRVFloatingButtonHandler::AddGestures(Platform::Ui& ui) {
  panner_ = ui.CreatePanGestureRecognizer(
      [self = weak_from_this()](Platform::PanGestureRecognizer& panner) {
        if (const auto handler = self.lock()) handler->panWasRecognized(panner);
      });
  buttonImageView_->AddGestureRecognizer(panner_);
  constexpr int kRequiredTaps = 1;
  singleTap_ = ui.CreateTapGestureRecognizer(kRequiredTaps, [self = weak_from_this()] {
    if (const auto handler = self.lock()) handler->tapDetected();
  });
  buttonImageView_->AddGestureRecognizer(singleTap_);
}

void KRVFloatingButtonHandler::KeepInFront() {
  timer_ = nullptr;
  timer_ = Host::Current()->mainQueue->Repeat(kFrontInterval, [self = weak_from_this()] {
    if (const auto handler = self.lock()) handler->bringFloatingButtonToFront();
  });
}

void KRVFloatingButtonHandler::TakeAway() {
  timer_ = nullptr;
  rotationWatch_ = nullptr;
  const auto view = std::exchange(buttonImageView_, nullptr);
  window_ = nullptr;
  panner_ = nullptr;
  singleTap_ = nullptr;
  if (view) view->RemoveFromSuperview();
}

void KRVFloatingButtonHandler::Recenter() {
  if (!buttonImageView_) return;
  Rect frame = buttonImageView_->Frame();
  frame.y = (KeyWindowFrame().height - kSize) * 0.5;
  buttonImageView_->SetFrame(frame);
}
