// Gives each port its destructor, and with it the one place of its virtual table.

#include "QEXCore_iOS/Platform/Host.h"

namespace Platform {

AlertController::~AlertController() = default;
AlertView::~AlertView() = default;
Application::~Application() = default;
Base64::~Base64() = default;
Bundle::~Bundle() = default;
Device::~Device() = default;
Digest::~Digest() = default;
FileHandle::~FileHandle() = default;
FileManager::~FileManager() = default;
GestureRecognizer::~GestureRecognizer() = default;
ImageView::~ImageView() = default;
JsonSerialization::~JsonSerialization() = default;
JsonVisitor::~JsonVisitor() = default;
LocalNotifications::~LocalNotifications() = default;
Locale::~Locale() = default;
MainQueue::~MainQueue() = default;
MainQueueTimer::~MainQueueTimer() = default;
NetworkReachability::~NetworkReachability() = default;
NotificationCenter::~NotificationCenter() = default;
NotificationObservation::~NotificationObservation() = default;
PanGestureRecognizer::~PanGestureRecognizer() = default;
ProcessInfo::~ProcessInfo() = default;
ReachabilityProbe::~ReachabilityProbe() = default;
RotationWatch::~RotationWatch() = default;
Screen::~Screen() = default;
SystemLog::~SystemLog() = default;
Telephony::~Telephony() = default;
TelephonyNetworkInfo::~TelephonyNetworkInfo() = default;
Ui::~Ui() = default;
UrlParser::~UrlParser() = default;
UrlSession::~UrlSession() = default;
UserDefaults::~UserDefaults() = default;
UserDefaultsProvider::~UserDefaultsProvider() = default;
UserNotificationCenter::~UserNotificationCenter() = default;
UuidGenerator::~UuidGenerator() = default;
View::~View() = default;
ViewController::~ViewController() = default;
WebView::~WebView() = default;
WebViewDelegate::~WebViewDelegate() = default;
Window::~Window() = default;

}  // namespace Platform
