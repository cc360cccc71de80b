#pragma once

namespace Storefront {

// Leaves in the app's settings what an installation with the previous generation of the SDK left
// there, as of a shop that was installed on 2014-05-13 and has been opened twelve times since.
void LeavePreviousInstallation();

}  // namespace Storefront
