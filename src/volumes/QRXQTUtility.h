#pragma once

#include <atomic>
#include <mutex>

#include "volumes/QRXHDMediaVolumeUtilityObject.h"
#include "volumes/QTMovieAttributes.h"

namespace qrx {

/// Loose QuickTime movies, and the parent of the cameras that record them.
///
/// A path that ends in .MOV (in any case) is claimed without a look at the file. Any other is
/// opened, unless its extension is one of files without video, and claimed when it is a movie (see
/// MovieReader) with a video or a sound track.
///
/// Movies are opened on the main thread only: a call from another thread hands the opening over
/// and waits, so a main loop that runs must be served while volumes are scanned.
class QRXQTUtility : public QRXHDMediaVolumeUtilityObject {
public:
    [[nodiscard]] static std::unique_ptr<QRXQTUtility> volumeUtility();
    [[nodiscard]] static QRXQTUtility& sharedInstance();

    [[nodiscard]] std::uint64_t volumeType() const override { return 11; }
    [[nodiscard]] std::string volumeTitle() const override { return "Apple QuickTime"; }
    [[nodiscard]] std::span<const StructureCheck> structureChecks() const override;
    /// "00:00:00:00", with a timecode track and without.
    [[nodiscard]] std::string startTimecodeForVideoFile(const FilePath& file) const override;
    /// The start timecode alone, of any file.
    [[nodiscard]] QRXMetadataWrapper metadataWrapperForVideoFilePath(
        const FilePath& file) const override;

    /// The movie probe: whether the file opens as a movie with a video or a sound track; if so,
    /// `pathMatches` is set. The answer travels with the call, so that two threads that probe
    /// through one utility never read each other's. Throws what the main thread throws.
    bool attemptToAllocateAQTMovieFromFile(const FilePath& file) const;
    /// An older probe that tells by `pathMatches` alone, and logs why a file did not open.
    void openMovie(const FilePath& file) const;

    /// Each attribute that is there fills one key: the size as "1920 x 1080", the name as it is,
    /// the times as dates in the local zone (QRXMetadataWrapper::dateKeyCalendarFormat).
    [[nodiscard]] QRXMetadataWrapper metadataWrapperFromMovieAttributes(
        const QTMovieAttributes& attributes) const;

    /// Result slot of the last probe, kept beside the answer; the path test clears it. It is no
    /// part of what the object answers, so const operations may set it.
    [[nodiscard]] bool pathMatches() const { return pathMatches_; }
    void setPathMatches(bool matches) const { pathMatches_ = matches; }
    /// For callers that want their probes one after the other; no operation of this class takes it.
    [[nodiscard]] std::mutex& matchLock() const { return matchLock_; }

private:
    mutable std::atomic<bool> pathMatches_ = false;
    mutable std::mutex matchLock_;
};

}  // namespace qrx
