#pragma once

#include <glib.h>

#include "platform/ports/ServiceBus.h"

namespace qrx::platform {

/// What a caller is told of an error of the bus library or of the other side.
[[nodiscard]] BusError busErrorOf(const GError* error);

}  // namespace qrx::platform
