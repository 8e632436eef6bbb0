#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>

#include "foundation/KeyedArchive.h"
#include "metadata/QRXMetadataKey.h"
#include "metadata/QRXMetadataWrapper.h"

namespace qrx {

// Metadata out of a keyed archive, binary or XML; keyedArchiveOf() writes them. Bytes that are no
// archive, or whose root is of another class, answer nothing. No operation throws.

/// The key that an object of an archive stands for, a QRXMXFKey when it was one; null when the
/// object is of another class.
[[nodiscard]] std::shared_ptr<QRXMetadataKey> metadataKeyFrom(const ArchivedObject& object);

/// As metadataKeyFrom() for the archive's root; null where there is none.
[[nodiscard]] std::shared_ptr<QRXMetadataKey> metadataKeyOfArchive(
    std::span<const std::byte> bytes);

/// The wrapper that is the archive's root. One that was a QRXMXFMetadataWrapper still counts as one
/// when it is archived again.
[[nodiscard]] std::optional<QRXMetadataWrapper> metadataWrapperOfArchive(
    std::span<const std::byte> bytes);

}  // namespace qrx
