#include "platform/linux/PixbufImageCodec.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <span>
#include <string_view>

#include <fcntl.h>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/GlibHandles.h"
#include "platform/linux/PictureEnd.h"
#include "platform/linux/PictureScaling.h"
#include "platform/linux/TiffFile.h"

namespace qrx::platform {

namespace {

constexpr std::size_t kBlock = std::size_t{64} << 10U;

/// Opens a regular file; a FIFO or device is left alone, so that nothing can block.
FileDescriptor openedRegularFile(const std::string& path) {
    if (path.find('\0') != std::string::npos) return {};
    FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status {};
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return {};
    return file;
}

bool isOpaque(const Image& image) {
    for (std::size_t at = 3; at < image.rgba.size(); at += 4) {
        if (image.rgba[at] != std::byte{0xFF}) return false;
    }
    return true;
}

std::optional<Image> inMemory(const GdkPixbuf* picture, bool isTiff) {
    const int channels = gdk_pixbuf_get_n_channels(picture);
    if (gdk_pixbuf_get_bits_per_sample(picture) != 8 || channels < 3) return std::nullopt;
    Image image;
    image.width = static_cast<std::uint32_t>(gdk_pixbuf_get_width(picture));
    image.height = static_cast<std::uint32_t>(gdk_pixbuf_get_height(picture));
    image.rgba.resize(std::size_t{4} * image.width * image.height);
    const auto stride = static_cast<std::size_t>(gdk_pixbuf_get_rowstride(picture));
    const guint8* const pixels = gdk_pixbuf_read_pixels(picture);
    std::byte* to = image.rgba.data();
    for (std::size_t y = 0; y < image.height; ++y) {
        const guint8* from = pixels + y * stride;
        for (std::size_t x = 0; x < image.width; ++x, from += channels, to += 4) {
            std::memcpy(to, from, 3);
            to[3] = channels == 4 ? std::byte{from[3]} : std::byte{0xFF};
        }
    }
    if (channels == 3 || (isTiff && isOpaque(image))) {
        image.alpha = AlphaKind::none;
    } else if (isTiff) {
        image.alpha = AlphaKind::premultipliedFirst;
    }
    return image;
}

struct Signature {
    std::string_view begin;
    const char* loader;
};

using namespace std::string_view_literals;

/// Unasked, the library tells formats by the desktop's MIME database, which a service may lack.
constexpr std::array kSignatures{
    Signature{"\xFF\xD8\xFF"sv, "jpeg"},
    Signature{"\x89PNG"sv, "png"},
    Signature{"II*\0"sv, "tiff"},
    Signature{"MM\0*"sv, "tiff"},
    Signature{"BM"sv, "bmp"},
    Signature{"GIF8"sv, "gif"},
};

GdkPixbufLoader* loaderFor(std::span<const std::byte> firstBytes) {
    const std::string_view begin(reinterpret_cast<const char*>(firstBytes.data()),
                                 firstBytes.size());
    for (const Signature& signature : kSignatures) {
        if (!begin.starts_with(signature.begin)) continue;
        GdkPixbufLoader* const loader = gdk_pixbuf_loader_new_with_type(signature.loader, nullptr);
        if (loader != nullptr) return loader;
    }
    return gdk_pixbuf_loader_new();
}

/// One picture on its way in.
class Decoding {
public:
    /// @param firstBytes  enough of the file to tell its format; to be handed to `accepts` as well.
    explicit Decoding(std::span<const std::byte> firstBytes) : loader_(loaderFor(firstBytes)) {
        g_signal_connect(loader_, "size-prepared", G_CALLBACK(&Decoding::sizeIsKnown), this);
        g_signal_connect(loader_, "area-updated", G_CALLBACK(&Decoding::areaIsDone), this);
    }
    ~Decoding() {
        if (!closed_) gdk_pixbuf_loader_close(loader_, nullptr);
        g_object_unref(loader_);
    }
    Decoding(const Decoding&) = delete;
    Decoding& operator=(const Decoding&) = delete;

    [[nodiscard]] bool accepts(std::span<const std::byte> bytes) {
        end_.feed(bytes);
        const auto* const data = reinterpret_cast<const guchar*>(bytes.data());
        return gdk_pixbuf_loader_write(loader_, data, bytes.size(), nullptr) != FALSE && !refused_;
    }

    /// The picture, when nothing of it is missing.
    [[nodiscard]] std::optional<Image> finished() {
        const GdkPixbuf* const picture = wholePicture();
        if (picture == nullptr) return std::nullopt;
        return inMemory(picture, formatIs("tiff"));
    }

private:
    /// Belongs to the loader; null when something is missing.
    const GdkPixbuf* wholePicture() {
        closed_ = true;
        if (gdk_pixbuf_loader_close(loader_, nullptr) == FALSE || refused_) return nullptr;
        const bool allRows = std::find(rowDone_.begin(), rowDone_.end(), false) == rowDone_.end();
        if (!allRows || !end_.isWhole()) return nullptr;
        return gdk_pixbuf_loader_get_pixbuf(loader_);
    }

    bool formatIs(std::string_view name) {
        GdkPixbufFormat* const format = gdk_pixbuf_loader_get_format(loader_);
        if (format == nullptr) return false;
        const GlibHandle<gchar> itsName(gdk_pixbuf_format_get_name(format));
        return itsName.get() == name;
    }

    static void sizeIsKnown(GdkPixbufLoader* loader, int width, int height, gpointer self) {
        auto& decoding = *static_cast<Decoding*>(self);
        const auto pixels = static_cast<std::uint64_t>(std::max(width, 0)) *
                            static_cast<std::uint64_t>(std::max(height, 0));
        if (pixels == 0 || pixels > ImageCodec::kMostPixels) {
            decoding.refused_ = true;
            gdk_pixbuf_loader_set_size(loader, 0, 0);  // makes the decoder give up
            return;
        }
        decoding.rowDone_.assign(static_cast<std::size_t>(height), false);
    }

    static void areaIsDone(GdkPixbufLoader* /*loader*/, int /*x*/, int y, int /*width*/, int height,
                           gpointer self) {
        std::vector<bool>& rows = static_cast<Decoding*>(self)->rowDone_;
        const auto first = std::min(static_cast<std::size_t>(std::max(y, 0)), rows.size());
        const auto count =
            std::min(static_cast<std::size_t>(std::max(height, 0)), rows.size() - first);
        std::fill_n(rows.begin() + static_cast<std::ptrdiff_t>(first), count, true);
    }

    GdkPixbufLoader* loader_;
    PictureEnd end_;
    std::vector<bool> rowDone_;  // decoders give a picture whose last rows never came
    bool refused_ = false;
    bool closed_ = false;
};

struct Option {
    std::string name;
    std::string value;
};

/// Whole dots per inch, at least one.
std::string dotsPerInch(std::uint32_t pixels, double points) {
    constexpr double kPointsPerInch = 72;
    constexpr double kMostDots = 65'535;  // the field of a JPEG has 16 bits
    return std::to_string(
        std::lround(std::clamp(pixels * kPointsPerInch / points, 1.0, kMostDots)));
}

std::vector<Option> resolutionOptions(const Image& image, const ImageEncoding& encoding) {
    if (!(encoding.pointsWide > 0 && encoding.pointsHigh > 0)) return {};
    return {{"x-dpi", dotsPerInch(image.width, encoding.pointsWide)},
            {"y-dpi", dotsPerInch(image.height, encoding.pointsHigh)}};
}

Image onWhite(Image image) {
    for (std::size_t at = 0; at < image.rgba.size(); at += 4) {
        std::byte* const pixel = image.rgba.data() + at;
        const int alpha = std::to_integer<int>(pixel[3]);
        for (std::size_t i = 0; i < 3; ++i) {
            const int mixed = std::to_integer<int>(pixel[i]) * alpha + 255 * (255 - alpha);
            pixel[i] = static_cast<std::byte>((mixed + 127) / 255);
        }
        pixel[3] = std::byte{0xFF};
    }
    image.alpha = AlphaKind::none;
    return image;
}

std::vector<guint8> withoutFourthByte(const Image& image) {
    std::vector<guint8> pixels;
    pixels.reserve(image.rgba.size() / 4 * 3);
    for (std::size_t at = 0; at < image.rgba.size(); at += 4) {
        for (std::size_t i = 0; i < 3; ++i) {
            pixels.push_back(std::to_integer<guint8>(image.rgba[at + i]));
        }
    }
    return pixels;
}

std::optional<std::vector<std::byte>> savedByPixbuf(const Image& image, const char* format,
                                                    const std::vector<Option>& options) {
    const bool hasOpacity = image.alpha == AlphaKind::straight;
    const std::vector<guint8> opaque =
        hasOpacity ? std::vector<guint8>() : withoutFourthByte(image);
    const auto* const pixels =
        hasOpacity ? reinterpret_cast<const guint8*>(image.rgba.data()) : opaque.data();
    const auto width = static_cast<int>(image.width);
    const GlibHandle<GdkPixbuf> picture(gdk_pixbuf_new_from_data(
        pixels, GDK_COLORSPACE_RGB, hasOpacity ? TRUE : FALSE, 8, width,
        static_cast<int>(image.height), width * (hasOpacity ? 4 : 3), nullptr, nullptr));
    std::vector<char*> names;
    std::vector<char*> values;
    for (const Option& option : options) {
        names.push_back(const_cast<char*>(option.name.c_str()));  // neither is written to
        values.push_back(const_cast<char*>(option.value.c_str()));
    }
    names.push_back(nullptr);
    values.push_back(nullptr);
    gchar* buffer = nullptr;
    gsize size = 0;
    if (gdk_pixbuf_save_to_bufferv(picture.get(), &buffer, &size, format, names.data(),
                                   values.data(), nullptr) == FALSE) {
        return std::nullopt;  // JPEG, for one, has no sides beyond 65,535 pixels
    }
    const GlibHandle<gchar> owned(buffer);
    const auto* const bytes = reinterpret_cast<const std::byte*>(buffer);
    return std::vector<std::byte>(bytes, bytes + size);
}

}  // namespace

std::optional<Image> PixbufImageCodec::load(const std::string& path) const {
    const FileDescriptor file = openedRegularFile(path);
    if (!file.isOpen()) return std::nullopt;
    std::array<std::byte, kBlock> block{};
    std::optional<Decoding> decoding;
    for (;;) {
        const ssize_t got = ::read(file.get(), block.data(), block.size());
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return std::nullopt;
        if (got == 0) break;
        const auto bytes = std::span(block).first(static_cast<std::size_t>(got));
        if (!decoding) decoding.emplace(bytes);
        if (!decoding->accepts(bytes)) return std::nullopt;
    }
    return decoding ? decoding->finished() : std::nullopt;
}

std::optional<Image> PixbufImageCodec::decoded(std::span<const std::byte> file) const {
    Decoding decoding(file);
    while (!file.empty()) {  // in blocks, so that a picture too large is refused early
        const auto block = file.first(std::min(file.size(), kBlock));
        if (!decoding.accepts(block)) return std::nullopt;
        file = file.subspan(block.size());
    }
    return decoding.finished();
}

std::optional<std::vector<std::byte>> PixbufImageCodec::encoded(
    const Image& image, const ImageEncoding& encoding) const {
    if (!isSound(image)) return std::nullopt;
    const Image straight = straightened(image);
    switch (encoding.format) {
        case ImageFormat::tiff:
            return tiffFile(straight, encoding);
        case ImageFormat::png:
            return savedByPixbuf(straight, "png", resolutionOptions(straight, encoding));
        case ImageFormat::jpeg:
            break;
    }
    std::vector<Option> options = resolutionOptions(straight, encoding);
    options.push_back({"quality", std::to_string(std::clamp(encoding.jpegQuality, 0, 100))});
    return savedByPixbuf(onWhite(straight), "jpeg", options);
}

std::optional<Image> PixbufImageCodec::scaled(const Image& image, std::uint32_t width,
                                              std::uint32_t height) const {
    const std::uint64_t pixels = std::uint64_t{width} * height;
    if (!isSound(image) || pixels == 0 || pixels > kMostPixels) return std::nullopt;
    return scaledPicture(image, width, height);
}

}  // namespace qrx::platform
