#pragma once

#include "app/QRXHDFileMatcherProtocol.h"
#include "distributed/QRXDistributedProxy.h"

namespace qrx {

/// Stands for the file matcher of another process: both protocols on one object. As with every
/// proxy, a call without an answer throws platform::BusError.
class QRXHDFileMatcherProxy : public QRXDistributedProxy, public QRXHDFileMatcherProtocol {
public:
    explicit QRXHDFileMatcherProxy(const QRXDistributedProxy& object)
        : QRXDistributedProxy(object) {
        setProtocolForProxy(kQRXHDFileMatcherProtocol);
    }

    /// Locations that are not UTF-8 cannot travel; they are refused.
    [[nodiscard]] std::vector<PathDictionary>
    filePathDictionariesForAllHDFilesAtFileSystemLocations(
        const FilePaths& locations) const override;
    [[nodiscard]] bool filePathIsQuickTime(const FilePath& file) const override;
};

}  // namespace qrx
