#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "VelmoraCore/AlertListenerInterface.h"
#include "VelmoraCore/AppStateListenerInterface.h"
#include "VelmoraCore/FloatingButtonListenerInterface.h"
#include "VelmoraCore/FullscreenListenerInterface.h"
#include "VelmoraCore/Object.h"
#include "services/ui/KRVMessagesMonitor.h"

namespace TestSupport {

// What listeners heard, in order.
using Calls = std::vector<std::string>;

class AlertListener final : public Velmora::Object, public virtual Velmora::AlertListenerInterface {
 public:
  // Notes with each call whether a message is displayed at that moment, as "*".
  AlertListener(Calls& calls, std::string name) : calls_(calls), name_(std::move(name)) {}

  bool throws = false;  // when it hears of a response

  void OnPositiveResponse() override {
    Note("positive");
    if (throws) throw std::runtime_error("spilt");
  }
  void OnNegativeResponse() override { Note("negative"); }
  void OnShow() override { Note("show"); }
  void OnDismiss() override { Note("dismiss"); }

 private:
  void Note(const std::string& call) {
    calls_.push_back(name_ + " " + call + (KRVMessagesMonitor().isDisplayed() ? "*" : ""));
  }

  Calls& calls_;
  const std::string name_;
};

class FullscreenListener final : public Velmora::Object,
                                 public virtual Velmora::FullscreenListenerInterface {
 public:
  using Message = std::shared_ptr<Velmora::FullScreenMessageUiInterface>;

  explicit FullscreenListener(Calls& calls) : calls_(calls) {}

  bool overrides = false;
  std::string overriddenUrl;  // overrides this one, whatever it does otherwise
  std::weak_ptr<Velmora::FullScreenMessageUiInterface> lastMessage;

  void OnShow(const Message& message) override { Note("show", message); }
  void OnDismiss(const Message& message) override { Note("dismiss", message); }
  bool OverrideUrlLoad(const Message& message, const std::string& url) override {
    Note("load " + url, message);
    return overrides || url == overriddenUrl;
  }

 private:
  void Note(const std::string& call, const Message& message) {
    calls_.push_back(call + (KRVMessagesMonitor().isDisplayed() ? "*" : ""));
    lastMessage = message;
  }

  Calls& calls_;
};

class ButtonListener final : public Velmora::Object,
                             public virtual Velmora::FloatingButtonListenerInterface {
 public:
  explicit ButtonListener(Calls& calls) : calls_(calls) {}

  void OnTapDetected() override { calls_.push_back("tap"); }
  void OnPanDetected() override { calls_.push_back("pan"); }

 private:
  Calls& calls_;
};

class StateListener final : public Velmora::Object,
                            public virtual Velmora::AppStateListenerInterface {
 public:
  StateListener(Calls& calls, std::string name) : calls_(calls), name_(std::move(name)) {}

  void OnForeground() override { calls_.push_back(name_ + " foreground"); }
  void OnBackground() override { calls_.push_back(name_ + " background"); }

 private:
  Calls& calls_;
  const std::string name_;
};

}  // namespace TestSupport
