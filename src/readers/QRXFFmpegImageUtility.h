#pragma once

#include "foundation/FilePath.h"
#include "readers/QRXFFmpegObject.h"

namespace qrx {

/// Makes a still picture of a movie with the ffmpeg tool.
class QRXFFmpegImageUtility : public QRXFFmpegObject {
public:
    /// Writes a JPEG of the movie's first second into `imageOutputDirectory`, under the movie's
    /// name followed by "movieImage.jpg" or, where that is taken, the next free name.
    ///
    /// @return the path of the picture, whether or not the tool succeeded in writing it. A FIFO,
    ///         socket or device is never shown to the tool. Never throws.
    [[nodiscard]] FilePath createImageFileForMovie(const FilePath& movie,
                                                   const FilePath& imageOutputDirectory) const;
};

}  // namespace qrx
