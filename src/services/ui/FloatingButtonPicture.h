#pragma once

namespace Velmora {

// What the floating button shows: a PNG of 150 by 150 pixels, as base64 text.
extern const char* const kFloatingButtonPicture;

}  // namespace Velmora
