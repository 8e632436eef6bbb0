#pragma once

#include <string>

#include "foundation/FilePath.h"
#include "volumes/QRXHDMediaVolumeUtilityObject.h"

namespace qrx::tool {

/// Who has a file, or why nobody has it.
struct Claim {
    const QRXHDMediaVolumeUtilityObject* utility = nullptr;  ///< null: nobody
    std::string reason{};                                    ///< why nobody has it, in a few words
    bool mayBeFootage = false;  ///< nobody has it, though its name does not say that it is no video

    [[nodiscard]] bool isClip() const { return utility != nullptr; }
};

/// Whether files whose names say that they hold no video are handed to the ffmpeg tool all the
/// same.
enum class Exactness { quick, exact };

/// Offers the file to the utilities in order of precedence, as a scan does.
[[nodiscard]] Claim claimOf(const FilePath& file, Exactness exactness);

/// Whether the layout takes clips wherever they lie, and not on a card of its own only.
[[nodiscard]] bool isWithoutCard(const QRXHDMediaVolumeUtilityObject& utility);

}  // namespace qrx::tool
