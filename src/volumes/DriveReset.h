#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/FilePath.h"

namespace qrx {

// Resetting a card to its empty layout. What a format does is a plan, made without touching
// anything, so that it can be shown first; one executor carries every plan out. Links are removed
// themselves and never followed.

/// One step of a reset.
struct ResetStep {
    enum class Kind : std::uint8_t {
        remove,           ///< the item at `path`, a folder with all that is in it
        removeByTool,     ///< the file at `path`, by the tool rm
        clearFiles,       ///< every file below the folder at `path`; the folders stay
        makeFolder,       ///< a folder at `path`, with those above it, where nothing exists
        removeXmlFollow,  ///< from the XML file at `path`, what follows the element `argument`
        removeXmlNode,    ///< the same, and that element too
        copyFile,         ///< to `path`, where nothing exists, the file at `argument`
    };

    Kind kind = Kind::remove;
    FilePath path{};
    std::string argument{};   ///< see Kind
    bool mustSucceed = true;  ///< a failure ends the reset with NO
    // Texts for the system log; constants.
    std::string_view logWhenArgumentExists{};  ///< said before the step
    std::string_view logOnFailure{};
};
using ResetPlan = std::vector<ResetStep>;

/// What the step does, as a phrase: "remove /media/ann/CARD/BPAV/CLPR with all that is in it".
[[nodiscard]] std::string description(const ResetStep& step);

/// Told of each step once it is done, and whether it succeeded.
using ResetListener = std::function<void(const ResetStep& step, bool succeeded)>;

/// Takes the steps in order, up to the first failure that counts. What was done before it stays.
/// @return whether every step that must succeed did.
[[nodiscard]] bool carryOut(const ResetPlan& plan, const ResetListener& listener = {});

/// A plan that removes every entry of the folder `drive`, in name order; no step where there is
/// nothing to list.
[[nodiscard]] ResetPlan planToRemoveEveryEntry(const FilePath& drive);

/// Whether a folder, and not a link to one, stands at `path`.
[[nodiscard]] bool isRealFolder(const FilePath& path);
/// Whether a link stands at `path`; a "/" at its end does not matter.
[[nodiscard]] bool isLink(const FilePath& path);

}  // namespace qrx
