#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "QEXCore_iOS/Platform/DeviceError.h"
#include "QEXCore_iOS/Platform/Host.h"
#include "platform/gtk/Gtk4Ui.h"
#include "platform/gtk/Gtk4ViewController.h"
#include "platform/gtk/WebKitSandbox.h"
#include "services/ui/KRVAlertHandler.h"
#include "support/ScopedEnvironment.h"
#include "ui/ScreenFixture.h"

G_GNUC_BEGIN_IGNORE_DEPRECATIONS

namespace {

using Platform::ContainerKind;
using Platform::Host;
using testing::ElementsAre;
using testing::HasSubstr;
using TestSupport::ScopedEnvironment;
using TestSupport::Until;

class WindowOnScreen : public TestSupport::ScreenFixture {
 protected:
  static std::shared_ptr<Platform::Window> KeyWindow() {
    return Host::Current()->application->KeyWindow();
  }

  // Whether a message would be presented on that widget.
  static bool IsPresentedOn(GtkWidget* widget) {
    const auto best = KRVAlertHandler::findBestViewController(KeyWindow()->RootViewController());
    return dynamic_cast<const Platform::Gtk4ViewController&>(*best).Widget().get() == widget;
  }

  void SetContent(GtkWidget* widget) {
    gtk_window_set_child(window, widget);
    content = widget;
    ASSERT_TRUE(Until([widget] { return gtk_widget_get_mapped(widget) != FALSE; }));
  }
};

TEST_F(WindowOnScreen, HasTheFrameOfItsContent) {
  EXPECT_EQ(KeyWindow()->Frame(), (Platform::Rect{0, 0, 375, 620}));
  gtk_widget_set_margin_start(content, 20);
  gtk_widget_set_margin_top(content, 30);
  EXPECT_TRUE(Until([this] { return ContentWidth() == 355 && ContentHeight() == 590; }));
  EXPECT_EQ(KeyWindow()->Frame(), (Platform::Rect{0, 0, 375, 620}));
}

TEST_F(WindowOnScreen, IsTheSameAtEachQuestion) {
  EXPECT_EQ(KeyWindow(), KeyWindow());
  EXPECT_THAT(Host::Current()->application->Windows(), ElementsAre(KeyWindow()));
}

TEST_F(WindowOnScreen, IsEmptyOnceItHasGone) {
  const auto kept = KeyWindow();
  auto* other = gtk_application_window_new(screen.application);
  gtk_window_present(GTK_WINDOW(other));
  gtk_window_destroy(window);
  window = GTK_WINDOW(other);
  EXPECT_TRUE(Until([this] { return IsActive(); }));
  EXPECT_EQ(kept->Frame(), Platform::Rect());
  EXPECT_EQ(kept->RootViewController(), nullptr);
  kept->AddSubview(Host::Current()->ui->CreateImageView({}));
}

TEST_F(WindowOnScreen, PresentsOnItsContent) {
  EXPECT_TRUE(IsPresentedOn(content));
  EXPECT_TRUE(KeyWindow()->RootViewController()->IsViewLoaded());
}

TEST_F(WindowOnScreen, PresentsOnTheLastPaneOfASplit) {
  GtkWidget* paned = gtk_paned_new(GTK_ORIENTATION_HORIZONTAL);
  SetContent(paned);
  EXPECT_TRUE(IsPresentedOn(paned));
  GtkWidget* first = gtk_label_new("first");
  gtk_paned_set_start_child(GTK_PANED(paned), first);
  EXPECT_TRUE(IsPresentedOn(first));
  GtkWidget* last = gtk_label_new("last");
  gtk_paned_set_end_child(GTK_PANED(paned), last);
  EXPECT_TRUE(IsPresentedOn(last));
}

TEST_F(WindowOnScreen, PresentsOnTheVisibleChildOfAStack) {
  GtkWidget* stack = gtk_stack_new();
  SetContent(stack);
  EXPECT_TRUE(IsPresentedOn(stack));
  GtkWidget* first = gtk_label_new("first");
  GtkWidget* second = gtk_label_new("second");
  gtk_stack_add_child(GTK_STACK(stack), first);
  gtk_stack_add_child(GTK_STACK(stack), second);
  EXPECT_TRUE(IsPresentedOn(first));
  gtk_stack_set_visible_child(GTK_STACK(stack), second);
  EXPECT_TRUE(IsPresentedOn(second));
}

TEST_F(WindowOnScreen, PresentsOnTheSelectedPageOfANotebook) {
  GtkWidget* notebook = gtk_notebook_new();
  SetContent(notebook);
  EXPECT_TRUE(IsPresentedOn(notebook));
  GtkWidget* first = gtk_label_new("first");
  GtkWidget* second = gtk_label_new("second");
  gtk_notebook_append_page(GTK_NOTEBOOK(notebook), first, nullptr);
  gtk_notebook_append_page(GTK_NOTEBOOK(notebook), second, nullptr);
  gtk_notebook_set_current_page(GTK_NOTEBOOK(notebook), 1);
  EXPECT_TRUE(IsPresentedOn(second));
}

TEST_F(WindowOnScreen, PresentsOnTheShownPageOfAnAssistant) {
  GtkWidget* assistant = gtk_assistant_new();
  GtkWidget* page = gtk_label_new("page");
  gtk_assistant_append_page(GTK_ASSISTANT(assistant), page);
  gtk_application_add_window(screen.application, GTK_WINDOW(assistant));
  gtk_window_present(GTK_WINDOW(assistant));
  EXPECT_TRUE(Until([&] { return gtk_window_is_active(GTK_WINDOW(assistant)) != FALSE; }));
  EXPECT_EQ(KeyWindow()->RootViewController()->Kind(), ContainerKind::Page);
  EXPECT_TRUE(IsPresentedOn(page));
  gtk_window_destroy(GTK_WINDOW(assistant));
}

TEST_F(WindowOnScreen, IsStillThereWhenNoneIsActive) {
  // Nothing active: the first window stands in for the key window.
  TestSupport::Minimize(window);
  EXPECT_TRUE(Until([] { return KeyWindow() == nullptr; }));
  EXPECT_EQ(Host::Current()->application->Windows().size(), 1U);
  TestSupport::Restore(window);
  EXPECT_TRUE(Until([] { return KeyWindow() != nullptr; }));
}

TEST_F(WindowOnScreen, ShowsALegacyAlert) {
  std::vector<int> chosen;
  const auto alert = Host::Current()->ui->CreateAlertView(
      {.title = "Title",
       .message = "Message",
       .cancelButtonTitle = "No",
       .otherButtonTitle = "Yes",
       .clickedButtonAtIndex = [&chosen](int index) { chosen.push_back(index); }});
  alert->Show();
  ASSERT_TRUE(Until([this] { return TestSupport::DialogOf(window) != nullptr; }));
  TestSupport::Click(TestSupport::FindButton(GTK_WIDGET(TestSupport::DialogOf(window)), "Yes"));
  EXPECT_TRUE(Until([this] { return IsActive(); }));
  EXPECT_THAT(chosen, ElementsAre(1));
}

TEST_F(WindowOnScreen, LetsNoExceptionPass) {
  const auto alert = Host::Current()->ui->CreateAlertController("Title", "Message");
  alert->AddAction("Yes", Platform::AlertActionStyle::Default,
                   [] { throw std::runtime_error("a fault"); });
  KeyWindow()->RootViewController()->Present(alert, true);
  ASSERT_TRUE(Until([this] { return TestSupport::DialogOf(window) != nullptr; }));
  TestSupport::PressKey("Return");
  EXPECT_TRUE(Until([this] { return IsActive(); }));
  EXPECT_THAT(screen.systemLog->TakeLines(),
              ElementsAre("What the screen called for threw: a fault"));
}

// A bubblewrap that does what the test says, in the place of the machine's.
class SandboxOnScreen : public WindowOnScreen {
 protected:
  void PutBubblewrap(const std::string& script) {
    const std::string file = folder.WriteFile("bwrap", "#!/bin/sh\n" + script);
    ASSERT_EQ(::chmod(file.c_str(), 0700), 0);
  }

  const TestSupport::TemporaryDirectory folder;
  const ScopedEnvironment path{"PATH", folder.Path().string() + ":" + std::getenv("PATH")};
  const ScopedEnvironment isOn{"WEBKIT_DISABLE_SANDBOX_THIS_IS_DANGEROUS", std::nullopt};
};

TEST_F(SandboxOnScreen, MakesNoWebViewWhereItCannotStart) {
  PutBubblewrap("echo 'bwrap: No permissions to create new namespace' >&2; exit 1");
  const auto systemLog = std::make_shared<TestSupport::FakeSystemLog>();
  Platform::Gtk4Ui ui(Host::Current()->mainQueue, systemLog, [] { return nullptr; });
  EXPECT_THROW(ui.CreateWebView({}), Platform::DeviceError);
  EXPECT_THROW(ui.CreateWebView({}), Platform::DeviceError);
  EXPECT_THAT(
      systemLog->TakeLines(),
      testing::Each(testing::AllOf(HasSubstr("bwrap: No permissions to create new namespace"),
                                   HasSubstr("WEBKIT_DISABLE_SANDBOX_THIS_IS_DANGEROUS=1"))));
}

TEST_F(SandboxOnScreen, WaitsForNoSandboxThatDoesNotAnswer) {
  PutBubblewrap("exec sleep 60");
  EXPECT_EQ(Platform::WhyWebKitCannotStart(), "bubblewrap does not answer");
}

TEST_F(SandboxOnScreen, IsNotAskedForWhereItIsSwitchedOff) {
  PutBubblewrap("exit 1");
  EXPECT_EQ(Platform::WhyWebKitCannotStart(), "bubblewrap fails");
  const ScopedEnvironment off("WEBKIT_DISABLE_SANDBOX_THIS_IS_DANGEROUS", "1");
  EXPECT_EQ(Platform::WhyWebKitCannotStart(), "");
}

TEST_F(SandboxOnScreen, SaysWhatIsNotInstalled) {
  const ScopedEnvironment nowhere("PATH", folder.Path().string());
  EXPECT_EQ(Platform::WhyWebKitCannotStart(), "bubblewrap is not installed");
}

}  // namespace

G_GNUC_END_IGNORE_DEPRECATIONS
