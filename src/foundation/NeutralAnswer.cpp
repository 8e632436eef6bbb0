#include "foundation/NeutralAnswer.h"

#include <string>

#include "platform/ports/Services.h"

namespace qrx {

void logFault(std::string_view where, std::string_view what) noexcept {
    try {
        platform::systemLog().notice(std::string(where).append(": ").append(what));
    } catch (...) {  // NOLINT(bugprone-empty-catch): a fault that cannot be logged is not worth one
    }
}

}  // namespace qrx
