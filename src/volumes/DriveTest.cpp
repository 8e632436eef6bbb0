#include "volumes/DriveTest.h"

#include <algorithm>

#include "foundation/FileQuestions.h"
#include "foundation/PathText.h"
#include "foundation/QRXFileSystemUtility.h"

namespace qrx {

bool isRemovableDriveHolding(const FilePath& drive, std::span<const std::string_view> items) {
    const FilePaths drives = QRXFileSystemUtility::sharedInstance().removableDrives();
    if (std::find(drives.begin(), drives.end(), drive) == drives.end()) return false;
    return std::all_of(items.begin(), items.end(),
                       [&](std::string_view item) { return itemExists(joinedPath(drive, item)); });
}

}  // namespace qrx
