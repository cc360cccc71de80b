#pragma once

#include <functional>
#include <utility>

#include <glib-object.h>

#include "platform/gtk/Shield.h"
#include "platform/gtk/WeakObject.h"

namespace Platform {

// A handler of a signal; it is called until this goes or the object does. Lives on the main queue.
class SignalConnection {
 public:
  SignalConnection() = default;
  SignalConnection(GObject* object, gulong handler) : object_(object), handler_(handler) {}
  ~SignalConnection() { Disconnect(); }
  SignalConnection(SignalConnection&& other) noexcept
      : object_(std::move(other.object_)), handler_(std::exchange(other.handler_, 0)) {}
  SignalConnection& operator=(SignalConnection&& other) noexcept {
    Disconnect();
    object_ = std::move(other.object_);
    handler_ = std::exchange(other.handler_, 0);
    return *this;
  }

  void Disconnect() {
    const gulong handler = std::exchange(handler_, 0);
    const auto object = object_.Get();
    // An object that is being disposed of has let its handlers go already.
    if (object && handler != 0 && g_signal_handler_is_connected(object.get(), handler) != FALSE) {
      g_signal_handler_disconnect(object.get(), handler);
    }
  }

 private:
  WeakObject<GObject> object_;
  gulong handler_ = 0;
};

template <class Signature>
struct SignalTrampoline;

template <class R, class... Args>
struct SignalTrampoline<R(Args...)> {
  static R Call(gpointer /*object*/, Args... args, gpointer handler) noexcept {
    const auto& call = *static_cast<std::function<R(Args...)>*>(handler);
    if constexpr (std::is_void_v<R>) {
      Shield([&] { call(args...); });
    } else {
      R result{};
      Shield([&] { result = call(args...); });
      return result;
    }
  }

  static void Delete(gpointer handler, GClosure* /*closure*/) {
    delete static_cast<std::function<R(Args...)>*>(handler);
  }
};

// Has `handler` called for the signal, with the arguments between the object and the user data:
//
//   OnSignal<void(GParamSpec*)>(window, "notify::is-active", [this](GParamSpec*) { Update(); });
//
// A handler that throws gives zero.
template <class Signature, class Handler>
[[nodiscard]] SignalConnection OnSignal(gpointer object, const char* signal, Handler&& handler,
                                        GConnectFlags flags = G_CONNECT_DEFAULT) {
  using Trampoline = SignalTrampoline<Signature>;
  auto* call = new std::function<Signature>(std::forward<Handler>(handler));
  const gulong id = g_signal_connect_data(object, signal, G_CALLBACK(&Trampoline::Call), call,
                                          &Trampoline::Delete, flags);
  return {G_OBJECT(object), id};
}

}  // namespace Platform
