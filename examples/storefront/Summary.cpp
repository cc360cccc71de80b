#include "Summary.h"

#include <algorithm>
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
  std::string service;
  std::string deed;  // empty: nothing
  std::string place;
};

fs::path FolderOf(const char* variable, const char* belowHome) {
  const char* folder = std::getenv(variable);
  if (folder != nullptr && *folder == '/') return fs::path(folder) / "storefront";
  const char* home = std::getenv("HOME");
  return fs::path(home == nullptr ? "" : home) / belowHome / "storefront";
}
fs::path CacheFolder() { return FolderOf("XDG_CACHE_HOME", ".cache"); }
fs::path DataFolder() { return FolderOf("XDG_DATA_HOME", ".local/share"); }

std::vector<std::string> FilesBelow(const fs::path& folder) {
  std::vector<std::string> names;
  std::error_code error;
  for (fs::recursive_directory_iterator entry(folder, error), end; entry != end && !error;
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

std::string DateOf(std::int64_t secondsSince1970) {
  const std::time_t time = secondsSince1970;
  std::ostringstream text;
  text << std::put_time(std::gmtime(&time), "%F");
  return text.str();
}

// `text` with `value` behind it; empty when there is no value.
std::string With(const std::string& text, const std::string& value) {
  return value.empty() ? std::string() : text + value;
}

std::string Counted(std::int64_t count, const std::string& text) {
  return count > 0 ? std::to_string(count) + ' ' + text : std::string();
}

std::string HostOf(const std::string& url) {
  const std::size_t begin = url.find("//");
  return begin == std::string::npos ? "" : url.substr(begin + 2, url.find('/', begin + 2) - begin - 2);
}

std::vector<Row> Rows(const HubObserver& observer, const HitNumbers& hits, int logLines) {
  const Platform::Value configuration = observer.StateOf("configuration");
  const Platform::Value lifecycle = observer.StateOf("lifecycle").Get("contextdata");
  const std::string collector = configuration.Get("analytics.server").AsString();
  const std::int64_t installed = lifecycle.Get("installDate").AsInt64();
  const fs::path cache = CacheFolder();
  const int shown = observer.Count("rules", "response", "outcome", "fired");
  return {
      {"system information",
       With("tells what this is: ", lifecycle.Get("osVersion").AsString().empty()
                                        ? ""
                                        : lifecycle.Get("appName").AsString() + " on " +
                                              lifecycle.Get("osName").AsString() + " " +
                                              lifecycle.Get("osVersion").AsString()),
       "no files"},
      {"logging", Counted(logLines, "lines written"), "standard error"},
      {"local storage",
       With("keeps the install date, moved from the previous generation: ",
            installed > 0 ? DateOf(installed) : ""),
       (DataFolder() / "user-defaults").string()},
      {"remote files", With("keeps what was downloaded: ",
                            Counted(static_cast<std::int64_t>(FilesBelow(cache / "krvdownloadcache").size()), "files")),
       (cache / "krvdownloadcache").string()},
      {"JSON", Counted(static_cast<std::int64_t>(configuration.Count()), "members of a configuration read"), "no files"},
      {"crypto", With("made the visitor's id: ", observer.StateOf("identity").Get("visitorId").AsString()), "no files"},
      {"compressed files", With("unpacked: ", Joined(FilesBelow(cache / "velmorarules"))), (cache / "velmorarules").string()},
      {"file system", Counted(observer.StateOf("rules").Get("count").AsInt64(), "rules read from there"), (cache / "velmorarules").string()},
      {"encoding", With("decoded the message of the rule ", observer.Count("rules", "response", "rule", "thank-you") > 0 ? "\"thank-you\"" : ""), "no files"},
      {"screen", Counted(shown, "times asked by a rule"), "the screen, or the log where there is none"},
      {"database", Counted(hits.sent + hits.waiting, "hits kept until they were sent"), Joined(DatabasesIn(cache))},
      {"network", Counted(hits.sent, "hits posted during this visit"), collector},
      {"URLs", With("took the collector's URL apart: ", hits.sent > 0 ? HostOf(collector) : ""), "no files"},
  };
}

}  // namespace

bool PrintSummary(const HubObserver& observer, const HitNumbers& hits, int logLines) {
  const std::vector<Row> rows = Rows(observer, hits, logLines);
  std::cout << "\nWhat the services did, and where:\n\n" << std::left;
  for (const Row& row : rows) {
    std::cout << "  " << std::setw(20) << row.service << (row.deed.empty() ? "NOTHING" : row.deed)
              << "\n  " << std::setw(20) << "" << row.place << '\n';
  }
  std::cout << std::endl;
  return std::none_of(rows.begin(), rows.end(), [](const Row& row) { return row.deed.empty(); });
}

}  // namespace Storefront
