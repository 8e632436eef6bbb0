#include "app/QRXHDFileMatcherProxy.h"

#include "app/RequestEncoding.h"

namespace qrx {

std::vector<PathDictionary>
QRXHDFileMatcherProxy::filePathDictionariesForAllHDFilesAtFileSystemLocations(
    const FilePaths& locations) const {
    const platform::BusValues results =
        call("filePathDictionariesForAllHDFilesAtFileSystemLocations", "as",
             {platform::BusValue::List(locations.begin(), locations.end())});
    return decodedDictionaries(results.at(0));
}

bool QRXHDFileMatcherProxy::filePathIsQuickTime(const FilePath& file) const {
    const platform::BusValues results = call("filePathIsQuickTime", "s", {file});
    const bool* isQuickTime = results.empty() ? nullptr : results.front().as<bool>();
    return isQuickTime != nullptr && *isQuickTime;
}

}  // namespace qrx
