#include "ui/ScreenFixture.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "QEXCore_iOS/Platform/Host.h"
#include "platform/gtk/Gtk4Host.h"
#include "services/ui/KRVMessagesMonitor.h"
#include "services/ui/NativeUiService.h"

namespace TestSupport {
namespace {

constexpr int kWidth = 375;
constexpr int kHeight = 620;

void CountClick(GtkButton* /*button*/, gpointer count) { ++*static_cast<int*>(count); }

}  // namespace

Screen& Screen::OfProcess() {
  static auto& screen = *new Screen;
  return screen;
}

// A program of the user's, as far as GLib can tell.
void Screen::RegisterOpener() {
  openedUrl = folder.PathOf("url");
  const std::string script =
      folder.WriteFile("open.sh", "printf %s \"$1\" > " + openedUrl + ".new && mv " + openedUrl +
                                      ".new " + openedUrl);
  const std::string data = std::getenv("XDG_DATA_HOME");
  const std::string config = std::getenv("XDG_CONFIG_HOME");
  std::filesystem::create_directories(data + "/applications");
  std::ofstream(data + "/applications/qex-screen.desktop")
      << "[Desktop Entry]\nType=Application\nName=Opener\nExec=/bin/sh " << script
      << " %u\nMimeType=x-scheme-handler/qex-screen;\n";
  std::ofstream(config + "/mimeapps.list")
      << "[Default Applications]\nx-scheme-handler/qex-screen=qex-screen.desktop\n";
}

Screen::Screen() {
  if (std::getenv("QEX_ON_DISPLAY") == nullptr) {
    throw std::runtime_error("Run this with tests/ui/on_display.");
  }
  RegisterOpener();
  if (gtk_init_check() == FALSE) throw std::runtime_error("There is no display.");
  bundle->SetBundlePath(folder.Path());
  application = gtk_application_new("com.example.ScreenTests", G_APPLICATION_NON_UNIQUE);
  Platform::HostOptions options;
  options.mainQueueThread = Platform::HostOptions::MainQueueThread::LoopOnly;
  auto base = Platform::Host::CreateDefault(options);
  base.bundle = bundle;
  base.systemLog = systemLog;
  Platform::Host::Install(Platform::WithGtk4(base, application));
  service = Velmora::CreateNativeUiService();
  g_application_register(G_APPLICATION(application), nullptr, nullptr);
}

ScreenFixture::ScreenFixture() {
  KRVMessagesMonitor().dismissed();
  window = GTK_WINDOW(gtk_application_window_new(screen.application));
  gtk_window_set_title(window, "A shop");
  gtk_window_set_default_size(window, kWidth, kHeight);
  content = gtk_box_new(GTK_ORIENTATION_VERTICAL, 12);
  entry = gtk_entry_new();
  button = gtk_button_new_with_label("Buy");
  g_signal_connect(button, "clicked", G_CALLBACK(CountClick), &buttonClicks);
  gtk_box_append(GTK_BOX(content), gtk_label_new("Shoes, hats and umbrellas"));
  gtk_box_append(GTK_BOX(content), entry);
  gtk_box_append(GTK_BOX(content), button);
  gtk_window_set_child(window, content);
  gtk_window_present(window);
  EXPECT_TRUE(Until([this] { return IsActive() && ContentHeight() == kHeight; }));
  gtk_window_set_focus(window, entry);
}

ScreenFixture::~ScreenFixture() {
  gtk_window_destroy(window);
  EXPECT_TRUE(Until([] { return g_list_model_get_n_items(gtk_window_get_toplevels()) == 0; }));
  EmptyMainQueue();
  KRVMessagesMonitor().dismissed();
  for (const std::string& line : screen.systemLog->TakeLines()) {
    ADD_FAILURE() << "An unexpected line on the system log: " << line;
  }
}

void ScreenFixture::EmptyMainQueue() {
  bool isDone = false;
  Platform::Host::Current()->mainQueue->Async([&isDone] { isDone = true; });
  EXPECT_TRUE(Until([&isDone] { return isDone; }));
}

bool ScreenFixture::Resize(int width, int height) {
  gtk_window_set_default_size(window, width, height);
  return Until([=, this] { return ContentWidth() == width && ContentHeight() == height; });
}

}  // namespace TestSupport
