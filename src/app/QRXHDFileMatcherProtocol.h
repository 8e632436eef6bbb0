#pragma once

#include <vector>

#include "distributed/DistributedProtocol.h"
#include "foundation/FilePath.h"
#include "volumes/PathDictionary.h"

namespace qrx {

inline constexpr DistributedProtocol kQRXHDFileMatcherProtocol{
    "com.quillfen.QRXHDFileMatcherProtocol"};
inline constexpr DistributedProtocol kQRXHDFileMatcherStream{"com.quillfen.QRXHDFileMatcherStream"};

/// What a host asks the file matcher. Both methods are optional: one that a class does not
/// implement answers an empty list, or NO.
class QRXHDFileMatcherProtocol {
public:
    virtual ~QRXHDFileMatcherProtocol() = default;

    /// The clips at the locations: a location at which nothing exists is passed over, a file stands
    /// for itself, a folder for the source files below it. In the order of the locations and of
    /// each folder's enumeration; a file that is reached twice is told twice.
    [[nodiscard]] virtual std::vector<PathDictionary>
    filePathDictionariesForAllHDFilesAtFileSystemLocations(const FilePaths& /*locations*/) const {
        return {};
    }

    /// Whether the file opens as a movie with a video or a sound track.
    [[nodiscard]] virtual bool filePathIsQuickTime(const FilePath& /*file*/) const { return false; }

protected:
    QRXHDFileMatcherProtocol() = default;
    QRXHDFileMatcherProtocol(const QRXHDFileMatcherProtocol&) = default;
    QRXHDFileMatcherProtocol& operator=(const QRXHDFileMatcherProtocol&) = default;
};

}  // namespace qrx
