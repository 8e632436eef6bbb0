#pragma once

#include <vector>

#include "distributed/ExportedObject.h"

namespace qrx {

class QRXHDFileMatcherController;

/// The members of the file matcher's protocol and of its stream. They refer to `controller`, so it
/// must outlive them.
[[nodiscard]] std::vector<BusMethod> fileMatcherMethods(
    const QRXHDFileMatcherController& controller);

}  // namespace qrx
