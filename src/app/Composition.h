#pragma once

#include <memory>

#include "app/QRXAppDelegate.h"

namespace qrx {

/// Makes the delegate, which has no window, and the controller, connects them and wakes them. May
/// end the process: a service without a name, or with one that is served already, ends here.
[[nodiscard]] std::unique_ptr<QRXAppDelegate> composeApplication();

}  // namespace qrx
