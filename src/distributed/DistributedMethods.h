#pragma once

#include <vector>

#include "distributed/ExportedObject.h"

namespace qrx {

class QRXDistributedAppController;

/// The members of the communication and launcher protocols that `controller` implements. They
/// refer to it, so it must outlive them. An empty text stands for an absent argument.
[[nodiscard]] std::vector<BusMethod> distributedMethods(QRXDistributedAppController& controller);

}  // namespace qrx
