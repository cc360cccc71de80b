#include "platform/gtk/Gtk4AlertDialog.h"

#include <algorithm>
#include <utility>

#include "platform/gtk/Signal.h"

// GtkMessageDialog is out of favour since GTK 4.10, whose GtkAlertDialog older systems lack.
G_GNUC_BEGIN_IGNORE_DEPRECATIONS

namespace Platform {
namespace {

constexpr std::size_t kLongestTitle = 300;
constexpr std::size_t kLongestMessage = 4'000;
constexpr int kTitleLines = 4;
constexpr std::size_t kLongestInFull = 600;  // beyond it a message is scrolled
constexpr int kScrollerHeight = 260;
constexpr int kLeastWidth = 280;
constexpr int kWidestLine = 50;  // characters
constexpr int kWidestButton = 24;
constexpr int kMargin = 18;
constexpr int kButtonMargin = 6;

// As a label takes it.
GCharPointer LabelText(std::string text, std::size_t longest) {
  const bool isCut = text.size() > longest;
  if (isCut) text.resize(longest);
  GCharPointer valid(g_utf8_make_valid(text.data(), static_cast<gssize>(text.size())));
  if (!isCut) return valid;
  return GCharPointer(g_strconcat(valid.get(), "…", nullptr));
}

void SetMargins(GtkWidget* widget, int margin) {
  gtk_widget_set_margin_top(widget, margin);
  gtk_widget_set_margin_bottom(widget, margin);
  gtk_widget_set_margin_start(widget, margin);
  gtk_widget_set_margin_end(widget, margin);
}

// A dialog, its signals and what becomes of it; belongs to the dialog.
class Dialog {
 public:
  static void Show(GtkWindow* window, Gtk4Alert alert) {
    auto* dialog = new Dialog(window, std::move(alert));
    g_object_set_data_full(G_OBJECT(dialog->widget_), "qexcore-alert", dialog,
                           [](gpointer self) { delete static_cast<Dialog*>(self); });
    gtk_window_present(GTK_WINDOW(dialog->widget_));
  }

 private:
  Dialog(GtkWindow* window, Gtk4Alert alert)
      : alert_(std::move(alert)),
        widget_(gtk_message_dialog_new(window, GTK_DIALOG_MODAL, GTK_MESSAGE_OTHER,
                                       GTK_BUTTONS_NONE, nullptr)) {
    gtk_window_set_destroy_with_parent(GTK_WINDOW(widget_), TRUE);
    gtk_window_set_resizable(GTK_WINDOW(widget_), FALSE);
    gtk_window_set_title(GTK_WINDOW(widget_), gtk_window_get_title(window));
    AddTexts();
    std::stable_partition(alert_.buttons.begin(), alert_.buttons.end(),
                          [](const Gtk4Alert::Button& button) { return button.isCancel; });
    AddButtons();
    onResponse_ = OnSignal<void(int)>(widget_, "response", [this](int id) { Respond(id); });
    onCloseRequest_ = OnSignal<gboolean()>(widget_, "close-request", [this] {
      Close();
      return TRUE;
    });
    onDestroy_ = OnSignal<void()>(widget_, "destroy", [this] { End(alert_.dismissed); });
  }

  void AddTexts() {
    // An alert without a title says its message in the title's place.
    const bool hasTitle = !alert_.title.empty();
    auto* area = GTK_BOX(gtk_message_dialog_get_message_area(GTK_MESSAGE_DIALOG(widget_)));
    SetMargins(GTK_WIDGET(area), kMargin);
    gtk_widget_set_size_request(GTK_WIDGET(area), kLeastWidth, -1);
    GtkWidget* title = gtk_widget_get_first_child(GTK_WIDGET(area));
    gtk_widget_set_visible(title, hasTitle ? TRUE : FALSE);
    if (hasTitle && GTK_IS_LABEL(title)) {
      gtk_label_set_text(GTK_LABEL(title), LabelText(alert_.title, kLongestTitle).get());
      gtk_label_set_lines(GTK_LABEL(title), kTitleLines);
      gtk_label_set_ellipsize(GTK_LABEL(title), PANGO_ELLIPSIZE_END);
      gtk_widget_add_css_class(title, "title-4");
    }
    if (!alert_.message.empty()) gtk_box_append(area, NewMessage());
  }

  GtkWidget* NewMessage() const {
    GtkWidget* label = gtk_label_new(LabelText(alert_.message, kLongestMessage).get());
    gtk_label_set_wrap(GTK_LABEL(label), TRUE);
    gtk_label_set_wrap_mode(GTK_LABEL(label), PANGO_WRAP_WORD_CHAR);
    gtk_label_set_max_width_chars(GTK_LABEL(label), kWidestLine);
    gtk_label_set_justify(GTK_LABEL(label), GTK_JUSTIFY_CENTER);
    return alert_.message.size() > kLongestInFull ? NewScroller(label) : label;
  }

  static GtkWidget* NewScroller(GtkWidget* child) {
    GtkWidget* scroller = gtk_scrolled_window_new();
    gtk_scrolled_window_set_child(GTK_SCROLLED_WINDOW(scroller), child);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scroller), GTK_POLICY_NEVER,
                                   GTK_POLICY_AUTOMATIC);
    gtk_scrolled_window_set_min_content_height(GTK_SCROLLED_WINDOW(scroller), kScrollerHeight);
    return scroller;
  }

  // A button's response is its number, counted from 1: GTK's own are negative.
  void AddButtons() {
    int id = 0;
    for (const Gtk4Alert::Button& button : alert_.buttons) {
      GtkWidget* label = gtk_label_new(LabelText(button.title, kLongestTitle).get());
      gtk_label_set_ellipsize(GTK_LABEL(label), PANGO_ELLIPSIZE_END);
      gtk_label_set_max_width_chars(GTK_LABEL(label), kWidestButton);
      GtkWidget* widget = gtk_button_new();
      gtk_button_set_child(GTK_BUTTON(widget), label);
      SetMargins(widget, kButtonMargin);
      gtk_dialog_add_action_widget(GTK_DIALOG(widget_), widget, ++id);
      if (!button.isCancel) gtk_dialog_set_default_response(GTK_DIALOG(widget_), id);
    }
  }

  void Respond(int id) {
    if (id < 1 || static_cast<std::size_t>(id) > alert_.buttons.size()) return;
    End(alert_.buttons[static_cast<std::size_t>(id) - 1].chosen);
  }

  void Close() {
    if (alert_.buttons.empty()) return End(alert_.dismissed);
    if (alert_.buttons.front().isCancel) End(alert_.buttons.front().chosen);
  }

  // What was chosen outlives the dialog, and this with it.
  void End(std::function<void()> call) {
    if (std::exchange(hasEnded_, true)) return;
    gtk_window_destroy(GTK_WINDOW(widget_));
    if (call) call();
  }

  Gtk4Alert alert_;
  GtkWidget* const widget_;
  bool hasEnded_ = false;
  SignalConnection onResponse_;
  SignalConnection onCloseRequest_;
  SignalConnection onDestroy_;
};

}  // namespace

void ShowAlertDialog(GtkWindow* window, Gtk4Alert alert) { Dialog::Show(window, std::move(alert)); }

}  // namespace Platform

G_GNUC_END_IGNORE_DEPRECATIONS
