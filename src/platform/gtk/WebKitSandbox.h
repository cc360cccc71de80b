#pragma once

#include <string>

namespace Platform {

// Why WebKit could not start here, for people; empty when it can. WebKit confines its processes
// with bubblewrap, and ends the whole program where that does not work, so this tries it out first
// with a program that does nothing. Takes some milliseconds, and two seconds at most.
std::string WhyWebKitCannotStart();

}  // namespace Platform
