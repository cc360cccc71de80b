#include "bridge/DataMarshaller.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace Velmora {

namespace {

struct LaunchKey {
  std::string_view input;
  std::string_view output;
};

constexpr std::array<LaunchKey, 3> kLaunchKeys = {{
    {"krv_deeplink", "deeplink"},
    {"krv_m_id", "pushmessageid"},
    {"krv_m_l_id", "notificationid"},
}};

// The separators of Unicode (categories Zs, Zl and Zp), the tabulator and the line breaks.
constexpr std::array<std::string_view, 25> kBlanks = {
    "\t",     "\n",     "\v",     "\f",     "\r",     " ",      "\u0085", "\u00a0", "\u1680",
    "\u2000", "\u2001", "\u2002", "\u2003", "\u2004", "\u2005", "\u2006", "\u2007", "\u2008",
    "\u2009", "\u200a", "\u2028", "\u2029", "\u202f", "\u205f", "\u3000",
};

}  // namespace

DataMarshaller::DataMarshaller() : launchData_(Platform::Value::Dictionary()) {}

bool DataMarshaller::isEmpty(const std::optional<std::string>& value) {
  // Nothing is left after trimming exactly when the text consists of blanks alone.
  std::string_view rest = value ? std::string_view(*value) : std::string_view();
  while (!rest.empty()) {
    const auto blank = std::find_if(kBlanks.begin(), kBlanks.end(), [rest](std::string_view text) {
      return rest.starts_with(text);
    });
    if (blank == kBlanks.end()) return false;
    rest.remove_prefix(blank->size());
  }
  return true;
}

void DataMarshaller::marshalLaunchInfo(const Platform::Value& info) {
  for (const LaunchKey& key : kLaunchKeys) {
    const Platform::Value& value = info.Get(key.input);
    // What is no text reads as an empty one.
    if (!isEmpty(value.AsString())) launchData_.Set(key.output, value);
  }
}

const Platform::Value& DataMarshaller::getLaunchData() const { return launchData_; }

}  // namespace Velmora
