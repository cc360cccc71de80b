#pragma once

#include <memory>
#include <vector>

#include "platform/gtk/Gtk4View.h"

namespace Platform {

// A picture. Lives on the main queue.
class Gtk4ImageView final : public Gtk4View<ImageView> {
 public:
  Gtk4ImageView(const ImageViewSettings& settings, std::shared_ptr<Gtk4Animator> animator);
  ~Gtk4ImageView() override;

  // A recogniser of another device's is left out.
  void AddGestureRecognizer(std::shared_ptr<GestureRecognizer> recognizer) override;

 private:
  std::vector<std::shared_ptr<GestureRecognizer>> recognizers_;
};

}  // namespace Platform
