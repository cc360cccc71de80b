#include "Summary.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

namespace Storefront {
namespace {

namespace fs = std::filesystem;

struct Row {
  const char* service;
  std::string deed;  // empty: none
  std::string place;
};

constexpr const char* kNoFiles = "no files";

fs::path FolderOf(const char* variable, const char* belowHome) {
  const char* folder = std::getenv(variable);
  if (folder != nullptr && *folder == '/') return fs::path(folder) / "storefront";
  const char* home = std::getenv("HOME");
  return fs::path(home == nullptr ? "" : home) / belowHome / "storefront";
}

// The names of the files, at any depth.
std::vector<std::string> FilesBelow(const fs::path& folder) {
  std::vector<std::string> names;
  std::error_code error;
  for (fs::recursive_directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    if (entry->is_regular_file(error)) names.push_back(entry->path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string Joined(const std::vector<std::string>& texts) {
  std::string joined;
  for (const std::string& text : texts) joined += (joined.empty() ? "" : ", ") + text;
  return joined;
}

std::string DateOf(const std::string& secondsSince1970) {
  std::time_t time = 0;
  std::from_chars(secondsSince1970.data(), secondsSince1970.data() + secondsSince1970.size(), time);
  if (time <= 0) return {};
  std::ostringstream text;
  text << std::put_time(std::gmtime(&time), "%F");
  return text.str();
}

std::string HostOf(const std::string& url) {
  const std::size_t slashes = url.find("//");
  if (slashes == std::string::npos) return {};
  return url.substr(slashes + 2, url.find('/', slashes + 2) - slashes - 2);
}

// Nothing where there is nothing to tell.
std::string Told(const std::string& text, const std::string& what) {
  return what.empty() ? std::string() : text + what;
}
std::string Counted(const std::string& text, std::int64_t count) {
  return Told(text, count > 0 ? std::to_string(count) : "");
}

// Those that keep nothing.
std::vector<Row> RowsWithoutFiles(const HubObserver& observer, const Traces& traces) {
  const Platform::Value configuration = observer.StateOf("configuration");
  const std::string collector = configuration.Get("analytics.collector").AsString();
  const std::string sha256 = observer.StateOf("rules").Get("sha256").AsString();
  const bool isThanked = observer.Count("rules", "response", "rule", "thank-you") > 0;
  return {
      {"system information",
       Told("told the hub of ", traces.lifecycle.Get("appName").AsString()) +
           Told(" on ", traces.lifecycle.Get("osName").AsString()),
       kNoFiles},
      {"crypto", Told("found the SHA-256 of the rules right: ", sha256.substr(0, 16)), kNoFiles},
      {"JSON",
       Counted("read the configuration's members: ",
               static_cast<std::int64_t>(configuration.Count())),
       kNoFiles},
      {"encoding", Told("decoded the message of the rule ", isThanked ? "thank-you" : ""),
       kNoFiles},
      {"URLs", Told("found the collector's host: ", HostOf(collector)), kNoFiles},
      {"network", Counted("hits posted during this visit: ", traces.hits.sent), collector},
      {"logging", Counted("lines written during this visit: ", traces.logLines), "standard error"},
      {"screen",
       Counted("asked by rules to show something: ",
               observer.Count("rules", "response", "outcome", "fired")),
       "the screen; the log where there is none"},
  };
}

std::vector<Row> RowsWithFiles(const HubObserver& observer, const Traces& traces) {
  const fs::path cache = FolderOf("XDG_CACHE_HOME", ".cache");
  const fs::path settings = FolderOf("XDG_DATA_HOME", ".local/share") / "user-defaults";
  const fs::path downloads = cache / "krvdownloadcache";
  const fs::path rules = cache / "velmorarules";
  const fs::path hits = cache / "KorvoMobile_AnalyticsHits";
  const std::int64_t kept = fs::exists(hits) ? traces.hits.sent + traces.hits.waiting : 0;
  return {
      {"local storage",
       Told("keeps the install date, moved from the previous generation: ",
            DateOf(traces.lifecycle.Get("installDate").AsString())),
       settings.string()},
      {"remote files",
       Counted("files downloaded and kept: ",
               static_cast<std::int64_t>(FilesBelow(downloads).size())),
       downloads.string()},
      {"compressed files", Told("unpacked ", Joined(FilesBelow(rules))), rules.string()},
      {"file system", Counted("rules read: ", observer.StateOf("rules").Get("count").AsInt64()),
       rules.string()},
      {"database", Counted("hits kept until they were sent: ", kept), hits.string()},
  };
}

}  // namespace

bool PrintSummary(const HubObserver& observer, const Traces& traces) {
  std::vector<Row> rows = RowsWithoutFiles(observer, traces);
  for (Row& row : RowsWithFiles(observer, traces)) rows.push_back(std::move(row));
  std::cout << "\nWhat the services did, and where:\n\n" << std::left;
  for (const Row& row : rows) {
    std::cout << "  " << std::setw(20) << row.service << (row.deed.empty() ? "NOTHING" : row.deed)
              << "\n  " << std::setw(20) << "" << row.place << '\n';
  }
  std::cout << std::endl;
  return std::none_of(rows.begin(), rows.end(), [](const Row& row) { return row.deed.empty(); });
}

}  // namespace Storefront
