#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "metadata/QRXMXFKey.h"
#include "volumes/QRXHDMediaVolumeUtilityObject.h"

namespace qrx {

/// MXF files, wherever they lie, and the parent of the cards that keep their clips in them.
///
/// Recognised by the first 11 bytes alone; folder and extension do not matter. Every value is
/// searched in the first and the last million bytes of the file, which are read anew each time.
class QRXMXFUtility : public QRXHDMediaVolumeUtilityObject {
public:
    [[nodiscard]] static std::unique_ptr<QRXMXFUtility> utility();
    [[nodiscard]] static QRXMXFUtility& sharedInstance();

    [[nodiscard]] std::uint64_t volumeType() const override { return 14; }
    [[nodiscard]] std::string volumeTitle() const override { return "MXF"; }
    [[nodiscard]] std::span<const StructureCheck> structureChecks() const override;

    // These three ask the path test of the object's own class first, so that a card layout answers
    // for its own files only.

    /// By the rounded timecode base; undefined when the file is not claimed.
    [[nodiscard]] QRXVideoFrameRate framerateForVideoFile(const FilePath& file) const override;
    [[nodiscard]] std::string startTimecodeForVideoFile(const FilePath& file) const override;
    [[nodiscard]] bool videoFileIsDropFrame(const FilePath& file) const override;

    /// The UMID as 64 hex digits; nothing when the file has none.
    [[nodiscard]] std::optional<std::string> uniqueIdentifierForVideoFile(
        const FilePath& file) const override;
    /// A record of all 33 keys, none of which has a value: what the file says is read, but the new
    /// record does not take it over.
    [[nodiscard]] QRXMetadataWrapper metadataWrapperForVideoFilePath(
        const FilePath& file) const override;

    // Beyond the protocol.

    /// uniqueIdentifierForVideoFile.
    [[nodiscard]] std::optional<std::string> umidForFilePath(const FilePath& file) const;
    /// 0 when the file does not say.
    [[nodiscard]] std::int32_t durationInEditUnitsForVideoFile(const FilePath& file) const;
    /// Numerator and denominator of the length of one edit unit in seconds; 0 and 1 when the file
    /// does not say.
    [[nodiscard]] std::int32_t editUnitNumeratorForVideoFile(const FilePath& file) const;
    [[nodiscard]] std::int32_t editUnitDenominatorForVideoFile(const FilePath& file) const;

    /// Position of the first `pattern` in `data`; 9223372036854775807 when there is none.
    [[nodiscard]] std::uint64_t byteSequenceLocation(std::span<const std::byte> pattern,
                                                     std::span<const std::byte> data) const;
    /// The value of `key` in `data`: a decimal number with `convertHex`, else hex digits.
    [[nodiscard]] std::optional<std::string> valueForKey(const QRXMXFKey& key,
                                                         std::span<const std::byte> data,
                                                         bool convertHex) const;
    /// As above, in the first million bytes of a file, else in the last.
    [[nodiscard]] std::optional<std::string> valueForKeyInFile(const QRXMXFKey& key,
                                                               const FilePath& file,
                                                               bool convertHex) const;
    /// The bytes between `key` and the next SMPTE label; a negative `location` means the first
    /// place of the key. A view into `data`.
    [[nodiscard]] std::optional<std::span<const std::byte>> hexValuesFollowingKey(
        std::span<const std::byte> key, std::span<const std::byte> data,
        std::int64_t location) const;
};

}  // namespace qrx
