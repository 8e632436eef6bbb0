#include "volumes/DriveReset.h"

#include <algorithm>

#include "foundation/FolderListing.h"
#include "foundation/PathText.h"
#include "foundation/QRXFileSystemUtility.h"

namespace qrx {

namespace {

bool isLink(FilePath path) {
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();  // with a "/" at its end the path means the link's target
    }
    return QRXFileSystemUtility::sharedInstance().filePathIsASymbolicLink(path);
}

}  // namespace

bool removeEveryEntryOf(const FilePath& drive) {
    if (isLink(drive)) return false;
    const auto names = namesInFolder(drive);
    if (!names) return true;
    return std::all_of(names->begin(), names->end(), [&](const std::string& name) {
        return QRXFileSystemUtility::sharedInstance().removeContentsAtPath(joinedPath(drive, name));
    });
}

}  // namespace qrx
