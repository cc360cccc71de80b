#include <adwaita.h>

#include "ui/MessageFixture.h"

namespace {

using TestSupport::Until;

class AdwaitaOnScreen : public TestSupport::MessageFixture {};

TEST_F(AdwaitaOnScreen, MessagesLieOverTheContentOfItsWindows) {
  adw_init();
  auto* other = GTK_WINDOW(adw_application_window_new(screen.application));
  gtk_window_set_default_size(other, 375, 620);
  GtkWidget* label = gtk_label_new("Content");
  adw_application_window_set_content(ADW_APPLICATION_WINDOW(other), label);
  gtk_window_present(other);
  gtk_window_destroy(window);
  window = other;
  content = label;
  ASSERT_TRUE(Until([this] { return IsActive() && ContentHeight() > 0; }));

  const auto message = Create(BluePage());
  message->Show();
  EXPECT_TRUE(Until([this] {
    return TestSupport::ColourAt(content, 180, 40) == kBlue &&
           TestSupport::ColourAt(content, 180, ContentHeight() - 40) == kBlue;
  }));
  TestSupport::Photograph("message-libadwaita");
  Remove(message);
  EXPECT_EQ(adw_application_window_get_content(ADW_APPLICATION_WINDOW(other)), label);

  service->ShowAlert("Free shipping", "Today only.", "Order", "Later",
                     std::make_shared<TestSupport::AlertListener>(calls, "alert"));
  ASSERT_TRUE(Until([this] { return TestSupport::DialogOf(window) != nullptr; }));
  TestSupport::Photograph("alert-libadwaita");
  TestSupport::PressKey("Escape");
  EXPECT_TRUE(UntilHeard("alert dismiss"));
}

}  // namespace
