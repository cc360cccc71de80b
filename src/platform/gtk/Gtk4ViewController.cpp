#include "platform/gtk/Gtk4ViewController.h"

#include "QEXCore_iOS/Platform/DeviceError.h"
#include "platform/gtk/Gtk4AlertController.h"
#include "platform/gtk/Gtk4Window.h"
#include "platform/gtk/Toplevels.h"

// GtkAssistant is out of favour since GTK 4.10, and what applications have.
G_GNUC_BEGIN_IGNORE_DEPRECATIONS

namespace Platform {
namespace {

using Controllers = std::vector<std::shared_ptr<ViewController>>;

void Append(Controllers& controllers, GtkWidget* widget) {
  if (auto controller = Gtk4ViewController::For(widget)) {
    controllers.push_back(std::move(controller));
  }
}

Controllers PanesOf(GtkPaned* paned) {
  Controllers panes;
  Append(panes, gtk_paned_get_start_child(paned));
  Append(panes, gtk_paned_get_end_child(paned));
  return panes;
}

Controllers ChildrenOf(GtkStack* stack) {
  Controllers children;
  for (GtkWidget* child = gtk_widget_get_first_child(GTK_WIDGET(stack)); child != nullptr;
       child = gtk_widget_get_next_sibling(child)) {
    Append(children, child);
  }
  return children;
}

Controllers TabsOf(GtkNotebook* notebook) {
  Controllers tabs;
  for (int i = 0; i < gtk_notebook_get_n_pages(notebook); ++i) {
    Append(tabs, gtk_notebook_get_nth_page(notebook, i));
  }
  return tabs;
}

// The assistant that shows the widget as its own content.
GtkAssistant* AssistantOf(GtkWidget* widget) {
  GtkRoot* root = gtk_widget_get_root(widget);
  if (root == nullptr || !GTK_IS_ASSISTANT(root)) return nullptr;
  const bool isContent = widget == Gtk4Window::Of(GTK_WINDOW(root))->Content();
  return isContent ? GTK_ASSISTANT(root) : nullptr;
}

Controllers ShownPageOf(GtkAssistant* assistant) {
  Controllers pages;
  const int page = gtk_assistant_get_current_page(assistant);
  if (page >= 0) Append(pages, gtk_assistant_get_nth_page(assistant, page));
  return pages;
}

}  // namespace

std::shared_ptr<Gtk4ViewController> Gtk4ViewController::For(GtkWidget* widget) {
  return widget == nullptr ? nullptr : std::make_shared<Gtk4ViewController>(widget);
}

Gtk4ViewController::Gtk4ViewController(GtkWidget* widget) : widget_(widget) {}

std::shared_ptr<ViewController> Gtk4ViewController::PresentedViewController() const {
  const auto window = Window();
  GtkWindow* dialog = window ? DialogOver(window.get()) : nullptr;
  return dialog == nullptr ? nullptr : Gtk4Window::Of(dialog)->RootViewController();
}

ContainerKind Gtk4ViewController::Kind() const {
  const auto widget = Widget();
  if (!widget) return ContainerKind::None;
  if (GTK_IS_PANED(widget.get())) return ContainerKind::Split;
  if (GTK_IS_STACK(widget.get())) return ContainerKind::Navigation;
  if (GTK_IS_NOTEBOOK(widget.get())) return ContainerKind::TabBar;
  return AssistantOf(widget.get()) != nullptr ? ContainerKind::Page : ContainerKind::None;
}

Controllers Gtk4ViewController::ViewControllers() const {
  const auto widget = Widget();
  switch (Kind()) {
    case ContainerKind::Split:
      return PanesOf(GTK_PANED(widget.get()));
    case ContainerKind::Navigation:
      return ChildrenOf(GTK_STACK(widget.get()));
    case ContainerKind::TabBar:
      return TabsOf(GTK_NOTEBOOK(widget.get()));
    case ContainerKind::Page:
      return ShownPageOf(AssistantOf(widget.get()));
    case ContainerKind::None:
      break;
  }
  return {};
}

std::shared_ptr<ViewController> Gtk4ViewController::TopViewController() const {
  if (Kind() != ContainerKind::Navigation) return nullptr;
  return For(gtk_stack_get_visible_child(GTK_STACK(Widget().get())));
}

std::shared_ptr<ViewController> Gtk4ViewController::SelectedViewController() const {
  if (Kind() != ContainerKind::TabBar) return nullptr;
  auto* notebook = GTK_NOTEBOOK(Widget().get());
  const int page = gtk_notebook_get_current_page(notebook);
  return page < 0 ? nullptr : For(gtk_notebook_get_nth_page(notebook, page));
}

bool Gtk4ViewController::IsViewLoaded() const {
  const auto widget = Widget();
  return widget && gtk_widget_get_realized(widget.get()) != FALSE;
}

void Gtk4ViewController::Present(const std::shared_ptr<AlertController>& alert, bool /*animated*/) {
  const auto window = Window();
  const auto shown = std::dynamic_pointer_cast<Gtk4AlertController>(alert);
  if (!window || !shown) throw DeviceError("An alert has no window to be shown over.");
  shown->ShowOver(window.get());
}

GObjectPointer<GtkWindow> Gtk4ViewController::Window() const {
  const auto widget = Widget();
  GtkRoot* root = widget ? gtk_widget_get_root(widget.get()) : nullptr;
  return Retain(root != nullptr && GTK_IS_WINDOW(root) ? GTK_WINDOW(root) : nullptr);
}

}  // namespace Platform

G_GNUC_END_IGNORE_DEPRECATIONS
