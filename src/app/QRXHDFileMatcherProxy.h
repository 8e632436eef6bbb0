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

    /// A location that is not UTF-8 can travel only with the stream's request, which is then made
    /// instead, its answer kept in memory; a service that has none refuses.
    [[nodiscard]] std::vector<PathDictionary>
    filePathDictionariesForAllHDFilesAtFileSystemLocations(
        const FilePaths& locations) const override;
    /// A name that is not UTF-8 cannot travel: std::invalid_argument.
    [[nodiscard]] bool filePathIsQuickTime(const FilePath& file) const override;

private:
    [[nodiscard]] std::vector<PathDictionary> streamedDictionaries(
        const FilePaths& locations) const;
};

}  // namespace qrx
