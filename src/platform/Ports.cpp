// Gives each port its destructor, and with it the one place of its virtual table.

#include "QEXCore_iOS/Platform/Host.h"

namespace Platform {

Base64::~Base64() = default;
Bundle::~Bundle() = default;
Device::~Device() = default;
Digest::~Digest() = default;
FileHandle::~FileHandle() = default;
FileManager::~FileManager() = default;
JsonSerialization::~JsonSerialization() = default;
JsonVisitor::~JsonVisitor() = default;
Locale::~Locale() = default;
NetworkReachability::~NetworkReachability() = default;
ProcessInfo::~ProcessInfo() = default;
ReachabilityProbe::~ReachabilityProbe() = default;
Screen::~Screen() = default;
SystemLog::~SystemLog() = default;
Telephony::~Telephony() = default;
TelephonyNetworkInfo::~TelephonyNetworkInfo() = default;
UrlParser::~UrlParser() = default;
UrlSession::~UrlSession() = default;
UserDefaults::~UserDefaults() = default;
UserDefaultsProvider::~UserDefaultsProvider() = default;
UuidGenerator::~UuidGenerator() = default;

}  // namespace Platform
