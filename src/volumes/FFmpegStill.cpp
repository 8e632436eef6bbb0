#include "volumes/FFmpegStill.h"

#include <unistd.h>

#include "foundation/FileQuestions.h"
#include "platform/ports/Services.h"
#include "readers/QRXFFmpegImageUtility.h"

namespace qrx {

namespace {

/// Removes the file at its path when it goes out of scope, also on a fault.
class FileRemover {
public:
    explicit FileRemover(const FilePath& path) : path_(path) {}
    ~FileRemover() { ::unlink(path_.c_str()); }
    FileRemover(const FileRemover&) = delete;
    FileRemover& operator=(const FileRemover&) = delete;

private:
    const FilePath& path_;
};

}  // namespace

platform::Image ffmpegStill(const FilePath& file, const FilePath& folder) {
    const FilePath still = QRXFFmpegImageUtility().createImageFileForMovie(file, folder);
    if (!itemExists(still)) return {};
    const FileRemover remover(still);
    return platform::imageCodec().load(still).value_or(platform::Image{});
}

}  // namespace qrx
