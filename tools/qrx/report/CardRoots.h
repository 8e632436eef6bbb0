#pragma once

#include <optional>

#include "foundation/FilePath.h"
#include "volumes/QRXHDMediaVolumeUtilityObject.h"

namespace qrx::tool {

/// The folder that is, or is a copy of, the root of the card on which the clip lies: the one above
/// the folders that its layout begins with. Nothing for layouts that take a clip wherever it lies.
///
/// The key that a layout gives to all clips of one card is of no use here: for some it is a folder
/// in the middle of a card, and for Canon EOS the folder in which all cards are mounted.
[[nodiscard]] std::optional<FilePath> cardRootOf(const FilePath& clip,
                                                 const QRXHDMediaVolumeUtilityObject& utility);

}  // namespace qrx::tool
