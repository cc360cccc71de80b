#pragma once

#include <string>

namespace Platform {

// Where the user's files belong, by the XDG base directory rules, from the environment as it is at
// the call. A relative path in the environment counts as none. Safe from any thread as long as none
// changes the environment.

// $XDG_CACHE_HOME, or $HOME/.cache; empty when the environment names neither.
std::string UserCacheHome();

// $XDG_DATA_HOME, or $HOME/.local/share; empty when the environment names neither.
std::string UserDataHome();

// The file name of the running program, without its folder; never empty, never with a "/".
std::string ProgramName();

}  // namespace Platform
