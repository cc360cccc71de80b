#pragma once

// The types, sources and data keys of the events that the core itself makes.
namespace Velmora {

namespace EventTypes {

inline constexpr const char* kConfiguration = "configuration";
inline constexpr const char* kIdentity = "identity";
inline constexpr const char* kLifecycle = "lifecycle";
inline constexpr const char* kAnalytics = "analytics";
inline constexpr const char* kRules = "rules";
inline constexpr const char* kPii = "pii";
inline constexpr const char* kData = "data";
inline constexpr const char* kHub = "hub";

}  // namespace EventTypes

namespace EventSources {

inline constexpr const char* kRequest = "request";    // asks for something to be done
inline constexpr const char* kQuery = "query";        // asks for an answer
inline constexpr const char* kResponse = "response";  // answers, or tells what was done
inline constexpr const char* kPrepared = "prepared";  // holds what is ready to be sent
inline constexpr const char* kSharedState = "sharedState";
inline constexpr const char* kBooted = "booted";

}  // namespace EventSources

namespace EventKeys {

// Of a configuration request, one of these; kUpdate holds a map. kPrivacyStatus holds a number, as
// MobilePrivacyStatus has them, in requests, in responses, and in the configuration itself.
inline constexpr const char* kAppId = "appId";
inline constexpr const char* kFilePath = "filePath";
inline constexpr const char* kUpdate = "update";
inline constexpr const char* kPrivacyStatus = "privacyStatus";

// Of an identity request, one of the first two; the response to an identity query holds the third,
// a JSON object as text. The last is a member of that object, and of hits.
inline constexpr const char* kPushIdentifier = "pushIdentifier";
inline constexpr const char* kAdvertisingIdentifier = "advertisingIdentifier";
inline constexpr const char* kIdentities = "identities";
inline constexpr const char* kVisitorId = "visitorId";

// Of lifecycle events: one of Phases.
inline constexpr const char* kPhase = "phase";

// Of analytics events: one of the first two. Context data are a map, here and in lifecycle events.
inline constexpr const char* kAction = "action";
inline constexpr const char* kState = "state";
inline constexpr const char* kContextData = "contextdata";
inline constexpr const char* kTimestamp = "timestamp";  // milliseconds since 1970

// Of a prepared analytics event: the id of the hit, which no other hit has.
inline constexpr const char* kHitId = "hitId";

// Of the response to an analytics query, numbers of hits: those that wait, and those that were sent
// and dropped since the core was made.
inline constexpr const char* kQueued = "queued";
inline constexpr const char* kSent = "sent";
inline constexpr const char* kDropped = "dropped";

// A map of the data collected.
inline constexpr const char* kCollected = "collected";

// Of a rules response: the rule's id, which of its consequences, and one of RuleOutcomes.
inline constexpr const char* kRule = "rule";
inline constexpr const char* kConsequence = "consequence";
inline constexpr const char* kOutcome = "outcome";

// The module whose shared state has changed.
inline constexpr const char* kStateOwner = "stateOwner";

}  // namespace EventKeys

namespace Phases {

inline constexpr const char* kStart = "start";
inline constexpr const char* kPause = "pause";

}  // namespace Phases

// What becomes of a consequence of a rule, and what the user does with it.
namespace RuleOutcomes {

inline constexpr const char* kFired = "fired";          // the rule asked for it
inline constexpr const char* kShown = "shown";          // it came on screen
inline constexpr const char* kDismissed = "dismissed";  // it left the screen
inline constexpr const char* kPositive = "positive";    // the positive button of an alert
inline constexpr const char* kNegative = "negative";    // the negative one
inline constexpr const char* kLink = "link";            // a link of a message
inline constexpr const char* kTapped = "tapped";        // the floating button

}  // namespace RuleOutcomes

}  // namespace Velmora
