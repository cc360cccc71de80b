#include "platform/gtk/Gtk4ImageView.h"

#include <string_view>
#include <utility>

#include <gtk/gtk.h>

#include "platform/gtk/Gtk4Gesture.h"

namespace Platform {
namespace {

// Null when the bytes are no PNG: GTK would take other formats, too.
GObjectPointer<GdkTexture> Decode(const std::string& image) {
  constexpr std::string_view kSignature = "\x89PNG\r\n\x1a\n";
  if (!image.starts_with(kSignature)) return nullptr;
  GBytes* bytes = g_bytes_new(image.data(), image.size());
  GObjectPointer<GdkTexture> texture(gdk_texture_new_from_bytes(bytes, nullptr));
  g_bytes_unref(bytes);
  return texture;
}

GtkWidget* NewPicture(const ImageViewSettings& settings) {
  const auto texture = Decode(settings.image);
  GtkWidget* picture = gtk_picture_new_for_paintable(GDK_PAINTABLE(texture.get()));
  gtk_picture_set_can_shrink(GTK_PICTURE(picture), TRUE);
  gtk_picture_set_content_fit(
      GTK_PICTURE(picture), settings.scalesToFit ? GTK_CONTENT_FIT_CONTAIN : GTK_CONTENT_FIT_FILL);
  gtk_widget_set_can_target(picture, settings.isUserInteractionEnabled ? TRUE : FALSE);
  return picture;
}

}  // namespace

Gtk4ImageView::Gtk4ImageView(const ImageViewSettings& settings,
                             std::shared_ptr<Gtk4Animator> animator)
    : Gtk4View(
          NewPicture(settings), settings.look,
          settings.scalesToFit ? Gtk4Placement::Growth::KeepsSize : Gtk4Placement::Growth::Fills,
          std::move(animator)) {}

// The picture may outlive this for a moment, and a recogniser calls what may not.
Gtk4ImageView::~Gtk4ImageView() {
  for (const auto& recognizer : recognizers_) {
    auto* gesture = dynamic_cast<Gtk4Gesture&>(*recognizer).Gesture();
    gtk_widget_remove_controller(Placement()->Widget(), GTK_EVENT_CONTROLLER(gesture));
  }
}

void Gtk4ImageView::AddGestureRecognizer(std::shared_ptr<GestureRecognizer> recognizer) {
  const auto* known = dynamic_cast<const Gtk4Gesture*>(recognizer.get());
  if (known == nullptr) return;
  auto* controller = GTK_EVENT_CONTROLLER(known->Gesture());
  if (gtk_event_controller_get_widget(controller) != nullptr) return;
  gtk_widget_add_controller(Placement()->Widget(), GTK_EVENT_CONTROLLER(g_object_ref(controller)));
  recognizers_.push_back(std::move(recognizer));
}

}  // namespace Platform
