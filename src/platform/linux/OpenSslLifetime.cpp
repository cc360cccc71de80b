#include "platform/linux/OpenSslLifetime.h"

#include <openssl/crypto.h>

namespace Platform {

void KeepOpenSslAtExit() { ::OPENSSL_init_crypto(OPENSSL_INIT_NO_ATEXIT, nullptr); }

}  // namespace Platform
