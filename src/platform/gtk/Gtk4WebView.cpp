#include "platform/gtk/Gtk4WebView.h"

#include <utility>

namespace Platform {
namespace {

GtkWidget* NewWebView() {
  const GObjectPointer<WebKitNetworkSession> session(webkit_network_session_new_ephemeral());
  auto* widget =
      GTK_WIDGET(g_object_new(WEBKIT_TYPE_WEB_VIEW, "network-session", session.get(), nullptr));
  constexpr GdkRGBA kClear = {0, 0, 0, 0};
  webkit_web_view_set_background_color(WEBKIT_WEB_VIEW(widget), &kClear);
  return widget;
}

std::string UrlOf(WebKitNavigationAction* action) {
  const char* url = webkit_uri_request_get_uri(webkit_navigation_action_get_request(action));
  return url == nullptr ? "" : url;
}

WebKitNavigationAction* ActionOf(WebKitPolicyDecision* decision) {
  return webkit_navigation_policy_decision_get_navigation_action(
      WEBKIT_NAVIGATION_POLICY_DECISION(decision));
}

void Decide(WebKitPolicyDecision* decision, bool allow) {
  allow ? webkit_policy_decision_use(decision) : webkit_policy_decision_ignore(decision);
}

}  // namespace

Gtk4WebView::Gtk4WebView(const WebViewSettings& settings, std::shared_ptr<Gtk4Animator> animator,
                         std::shared_ptr<SystemLog> systemLog)
    : Gtk4View(NewWebView(), settings.look, Gtk4Placement::Growth::Fills, std::move(animator)),
      kind_(settings.kind),
      systemLog_(std::move(systemLog)) {
  ConnectPolicy();
  ConnectLoading();
  RefuseExtras();
}

void Gtk4WebView::SetDelegate(std::weak_ptr<WebViewDelegate> delegate) {
  delegate_ = std::move(delegate);
}

void Gtk4WebView::LoadHtml(const std::string& html, const std::string& baseUrl) {
  isLoadExpected_ = true;
  Placement()->SetReady(false);
  const GCharPointer text(g_utf8_make_valid(html.data(), static_cast<gssize>(html.size())));
  webkit_web_view_load_html(Web(), text.get(), baseUrl.empty() ? nullptr : baseUrl.c_str());
}

void Gtk4WebView::LoseWindow() {
  if (const auto delegate = delegate_.lock()) delegate->DidLoseWindow();
}

void Gtk4WebView::ConnectPolicy() {
  connections_.push_back(OnSignal<gboolean(WebKitPolicyDecision*, WebKitPolicyDecisionType)>(
      Web(), "decide-policy",
      [this](WebKitPolicyDecision* decision, WebKitPolicyDecisionType type) {
        return DecidePolicy(decision, type) ? TRUE : FALSE;
      }));
  // window.open comes here and nowhere else.
  connections_.push_back(OnSignal<GtkWidget*(WebKitNavigationAction*)>(
      Web(), "create", [this](WebKitNavigationAction* action) -> GtkWidget* {
        AskForNewWindow(action);
        return nullptr;
      }));
}

void Gtk4WebView::ConnectLoading() {
  connections_.push_back(
      OnSignal<void(WebKitLoadEvent)>(Web(), "load-changed", [this](WebKitLoadEvent event) {
        if (event == WEBKIT_LOAD_FINISHED) Placement()->SetReady(true);
      }));
  // True keeps WebKit from showing a page of its own about it.
  connections_.push_back(OnSignal<gboolean(WebKitLoadEvent, const char*, GError*)>(
      Web(), "load-failed", [this](WebKitLoadEvent, const char*, GError* error) {
        Failed(error);
        return TRUE;
      }));
  connections_.push_back(OnSignal<void(WebKitWebProcessTerminationReason)>(
      Web(), "web-process-terminated", [this](WebKitWebProcessTerminationReason) {
        Placement()->SetReady(true);
        systemLog_->Write("A web view is empty now: its process has ended.");
      }));
}

// What a message has no use for.
void Gtk4WebView::RefuseExtras() {
  connections_.push_back(OnSignal<gboolean(gpointer, gpointer)>(Web(), "context-menu",
                                                                [](auto, auto) { return TRUE; }));
  connections_.push_back(OnSignal<gboolean(gpointer)>(Web(), "print", [](auto) { return TRUE; }));
  connections_.push_back(OnSignal<gboolean()>(Web(), "enter-fullscreen", [] { return TRUE; }));
  connections_.push_back(OnSignal<gboolean(WebKitPermissionRequest*)>(
      Web(), "permission-request", [](WebKitPermissionRequest* request) {
        webkit_permission_request_deny(request);
        return TRUE;
      }));
  connections_.push_back(OnSignal<void(WebKitDownload*)>(
      webkit_web_view_get_network_session(Web()), "download-started",
      [](WebKitDownload* download) { webkit_download_cancel(download); }));
}

bool Gtk4WebView::DecidePolicy(WebKitPolicyDecision* decision, WebKitPolicyDecisionType type) {
  switch (type) {
    case WEBKIT_POLICY_DECISION_TYPE_NAVIGATION_ACTION:
      DecideNavigation(decision);
      break;
    case WEBKIT_POLICY_DECISION_TYPE_NEW_WINDOW_ACTION:
      AskForNewWindow(ActionOf(decision));
      webkit_policy_decision_ignore(decision);
      break;
    case WEBKIT_POLICY_DECISION_TYPE_RESPONSE:
      Decide(decision, webkit_response_policy_decision_is_mime_type_supported(
                           WEBKIT_RESPONSE_POLICY_DECISION(decision)) != FALSE);
      break;
  }
  return true;
}

void Gtk4WebView::DecideNavigation(WebKitPolicyDecision* decision) {
  WebKitNavigationAction* action = ActionOf(decision);
  const bool isOwn =
      std::exchange(isLoadExpected_, false) &&
      webkit_navigation_action_get_navigation_type(action) == WEBKIT_NAVIGATION_TYPE_OTHER;
  if (isOwn) return webkit_policy_decision_use(decision);
  Ask(UrlOf(action), [kept = std::shared_ptr<WebKitPolicyDecision>(Retain(decision))](bool allow) {
    Decide(kept.get(), allow);
  });
}

void Gtk4WebView::AskForNewWindow(WebKitNavigationAction* action) {
  const std::string url = UrlOf(action);
  Ask(url, [self = weak_from_this(), url](bool allow) {
    const auto view = self.lock();
    if (!view || !allow) return;
    view->isLoadExpected_ = true;
    webkit_web_view_load_uri(view->Web(), url.c_str());
  });
}

// Calls `decide` once, and not again whatever the delegate does.
void Gtk4WebView::Ask(const std::string& url, Answer decide) const {
  const auto delegate = delegate_.lock();
  if (!delegate) return decide(false);
  if (kind_ == WebViewKind::Legacy) return decide(delegate->ShouldStartLoad(url));
  const auto once = std::make_shared<Answer>(std::move(decide));
  delegate->DecidePolicy(url, [once](bool allow) {
    const auto call = std::exchange(*once, nullptr);
    if (call) call(allow);
  });
}

void Gtk4WebView::Failed(const GError* error) const {
  Placement()->SetReady(true);
  const bool isRefusal =
      g_error_matches(error, WEBKIT_POLICY_ERROR,
                      WEBKIT_POLICY_ERROR_FRAME_LOAD_INTERRUPTED_BY_POLICY_CHANGE) != FALSE ||
      g_error_matches(error, WEBKIT_NETWORK_ERROR, WEBKIT_NETWORK_ERROR_CANCELLED) != FALSE;
  if (!isRefusal) systemLog_->Write(std::string("A web view did not load: ") + error->message);
}

}  // namespace Platform
