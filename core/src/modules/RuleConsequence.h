#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "VelmoraCore/Variant.h"

namespace Velmora {

// What a rule does when it fires. An empty text stands for one that the rule does not give.

struct AlertConsequence {
  std::string title;
  std::string message;
  std::string positive;
  std::string negative;
  std::string url;  // opened by the positive button
};

// One of the two.
struct MessageConsequence {
  std::string html;    // the name of a file beside the rules
  std::string base64;  // the HTML itself
};

struct NotificationConsequence {
  std::string text;
  std::int64_t delay = 0;  // seconds
  std::string sound;
  std::string category;
  std::string link;
  VariantMap userInfo;
};

struct ButtonConsequence {
  std::string url;  // opened by a tap
};

struct OpenConsequence {
  std::string url;
};

using RuleConsequence = std::variant<AlertConsequence, MessageConsequence, NotificationConsequence,
                                     ButtonConsequence, OpenConsequence>;

// The names of the consequences, as rules and events have them.
const char* NameOf(const RuleConsequence& consequence);

// True when it takes the whole screen, which can be had by one at a time only.
bool TakesTheScreen(const RuleConsequence& consequence);

// From an object with a member for each consequence, {"open": {"url": "https://…"}}, say; in the
// order of RuleConsequence. Empty, and `problem` says why, when it cannot be understood.
std::vector<RuleConsequence> ReadConsequences(const VariantMap& json, std::string& problem);

}  // namespace Velmora
