#pragma once

namespace Platform {

// Lets OpenSSL last until the process is gone. Left to itself, it registers an exit handler at its
// first use, which frees what threads of ours, of the app or of other libraries may still be using.
// Comes too late, and does nothing, when the app has used OpenSSL before. Any thread, any number of
// times.
void KeepOpenSslAtExit();

}  // namespace Platform
