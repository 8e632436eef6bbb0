#include "volumes/Siblings.h"

#include "foundation/PathText.h"

namespace qrx {

FilePath grandparentFolder(const FilePath& file) {
    return withoutLastPathComponent(withoutLastPathComponent(file));
}

}  // namespace qrx
