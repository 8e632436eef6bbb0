#pragma once

#include <atomic>
#include <optional>
#include <string>
#include <vector>

#include "app/QRXHDFileMatcherProtocol.h"
#include "distributed/QRXDistributedAppController.h"
#include "foundation/FilePath.h"
#include "volumes/PathDictionary.h"
#include "volumes/QRXHDMediaVolumeUtilityObject.h"

namespace qrx {

/// What a host asks about file-system locations. Lives as long as the process and keeps nothing
/// between requests: each works on the file system as it is at that moment. No operation throws.
class QRXHDFileMatcherController : public QRXDistributedAppController,
                                   public QRXHDFileMatcherProtocol {
public:
    [[nodiscard]] std::vector<PathDictionary>
    filePathDictionariesForAllHDFilesAtFileSystemLocations(
        const FilePaths& locations) const override;
    /// As before; ends early, with what was found so far, once `isCancelled` is set. It may be
    /// null.
    [[nodiscard]] std::vector<PathDictionary>
    filePathDictionariesForAllHDFilesAtFileSystemLocations(
        const FilePaths& locations, const std::atomic<bool>* isCancelled) const;

    [[nodiscard]] bool filePathIsQuickTime(const FilePath& file) const override;

    /// Whether a utility other than the base object claims the file, told by its volume type.
    [[nodiscard]] bool filePathMatchesADefinedVolume(const FilePath& file) const;

    /// What is told of a file that `utility` claims.
    [[nodiscard]] PathDictionary pathDictionaryForFile(
        const FilePath& file, const QRXHDMediaVolumeUtilityObject& utility) const;

    /// Whether the generic QuickTime utility accepts the file: a file by the name of a movie needs
    /// not open as one.
    [[nodiscard]] bool filePathIsQuickTimeCompatible(const FilePath& file) const;

    /// Reserved: always nothing.
    [[nodiscard]] std::optional<FilePaths> filePathsMatchingHDFormats(
        const std::vector<std::string>& formats, const FilePaths& locations) const;

    /// A developer's self-test: looks through the card "TEST CARD" in the resource folder and drops
    /// the answer.
    void autoTest() const;

    /// Called once the composition has made this object: starts the watch over the host on a
    /// thread of its own, then serves under the name that is command-line argument 1.
    void awakeFromNib() override;

protected:
    [[nodiscard]] std::vector<std::string_view> interfaceDescriptions() const override;
    [[nodiscard]] std::vector<BusMethod> exportedMethods() override;
    [[nodiscard]] std::string_view wayOutOfLargeAnswers() const override;
};

}  // namespace qrx
