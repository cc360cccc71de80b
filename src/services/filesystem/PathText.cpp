#include "services/filesystem/PathText.h"

#include <vector>

namespace Velmora::PathText {
namespace {

constexpr char kSeparator = '/';

bool IsAbsolute(std::string_view path) { return path.starts_with(kSeparator); }

// Takes the first component off `rest`, with the separator behind it.
std::string_view TakeComponent(std::string_view& rest) {
  const std::size_t end = rest.find(kSeparator);
  const std::string_view component = rest.substr(0, end);
  rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  return component;
}

void AddComponents(std::string_view text, std::string& path) {
  while (!text.empty()) {
    const std::string_view component = TakeComponent(text);
    if (component.empty()) continue;
    if (!path.empty() && path.back() != kSeparator) path += kSeparator;
    path += component;
  }
}

}  // namespace

std::string Append(std::string_view path, std::string_view component) {
  std::string joined(IsAbsolute(path) ? "/" : "");
  joined.reserve(path.size() + component.size() + 2);
  AddComponents(path, joined);
  AddComponents(component, joined);
  return joined;
}

std::string Below(std::string_view path, std::string_view name) {
  return Standardize(Append(path, name));
}

std::string Standardize(std::string_view path) {
  std::vector<std::string_view> kept;
  for (std::string_view rest = path; !rest.empty();) {
    const std::string_view component = TakeComponent(rest);
    if (component.empty() || component == ".") continue;
    const bool goesUp = component == "..";
    if (goesUp && !kept.empty() && kept.back() != "..") {
      kept.pop_back();
    } else if (!goesUp || !IsAbsolute(path)) {
      kept.push_back(component);
    }
  }
  std::string folded(IsAbsolute(path) ? "/" : "");
  for (const std::string_view component : kept) AddComponents(component, folded);
  if (folded.empty() && !path.empty()) folded += '.';
  return folded;
}

}  // namespace Velmora::PathText
