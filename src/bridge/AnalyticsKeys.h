#pragma once

// The keys of the event data with which actions and states are tracked.
namespace Velmora {

inline constexpr char ANALYTICS_TRACK_ACTION[] = "action";
inline constexpr char ANALYTICS_TRACK_STATE[] = "state";
inline constexpr char ANALYTICS_CONTEXT_DATA[] = "contextdata";

}  // namespace Velmora
