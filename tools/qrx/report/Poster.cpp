#include "qrx/report/Poster.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <system_error>

#include <unistd.h>

#include "foundation/PathText.h"
#include "foundation/Removal.h"
#include "platform/ports/Services.h"

namespace qrx::tool {

namespace {

// A picture that does not fit into its bytes loses quality first, then size.
constexpr std::array kQualities{78, 60, 42};
constexpr int kAttempts = 3;
constexpr double kShrinking = 0.7;

/// At most 1: a small picture stays as it is.
double fittingScale(const platform::Image& picture) {
    return std::min({1.0, static_cast<double>(kMostPosterWidth) / picture.width,
                     static_cast<double>(kMostPosterHeight) / picture.height});
}

std::uint32_t pixels(std::uint32_t size, double scale) {
    return std::max(1U, static_cast<std::uint32_t>(std::lround(size * scale)));
}

}  // namespace

TemporaryPictures::TemporaryPictures() {
    const char* const chosen = std::getenv("TMPDIR");
    folder_ =
        joinedPath(chosen != nullptr && *chosen == '/' ? chosen : "/tmp", "qrx-report-XXXXXX");
    if (::mkdtemp(folder_.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), folder_);
    }
}

TemporaryPictures::~TemporaryPictures() {
    static_cast<void>(removeItem(folder_));
}

Poster posterOf(const FilePath& clip, const QRXHDMediaVolumeUtilityObject& utility,
                const FilePath& temporaryFolder) {
    const platform::Image picture = utility.posterImageForFilePath(clip, temporaryFolder);
    if (picture.isEmpty()) return {};
    double scale = fittingScale(picture);
    for (int attempt = 0; attempt < kAttempts; ++attempt, scale *= kShrinking) {
        const auto small = platform::imageCodec().scaled(picture, pixels(picture.width, scale),
                                                         pixels(picture.height, scale));
        if (!small) return {};
        for (const int quality : kQualities) {
            const auto bytes = platform::imageCodec().encoded(
                *small, {.format = platform::ImageFormat::jpeg, .jpegQuality = quality});
            if (!bytes) return {};
            if (bytes->size() > kMostPosterBytes) continue;
            return {
                .jpeg = std::string(reinterpret_cast<const char*>(bytes->data()), bytes->size()),
                .width = small->width,
                .height = small->height};
        }
    }
    return {};
}

}  // namespace qrx::tool
