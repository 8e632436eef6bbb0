#include "platform/linux/PixbufImageCodec.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <span>

#include <fcntl.h>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/PictureEnd.h"

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

/// One picture on its way in.
class Decoding {
public:
    Decoding() : loader_(gdk_pixbuf_loader_new()) {
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

    /// The picture, when nothing of it is missing; belongs to this object.
    [[nodiscard]] const GdkPixbuf* finished() {
        closed_ = true;
        if (gdk_pixbuf_loader_close(loader_, nullptr) == FALSE || refused_) return nullptr;
        const bool allRows = std::find(rowDone_.begin(), rowDone_.end(), false) == rowDone_.end();
        if (!allRows || !end_.isWhole()) return nullptr;
        return gdk_pixbuf_loader_get_pixbuf(loader_);
    }

private:
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

std::optional<Image> inMemory(const GdkPixbuf* picture) {
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
    return image;
}

}  // namespace

std::optional<Image> PixbufImageCodec::load(const std::string& path) const {
    const FileDescriptor file = openedRegularFile(path);
    if (!file.isOpen()) return std::nullopt;
    Decoding decoding;
    std::array<std::byte, kBlock> block{};
    for (;;) {
        const ssize_t got = ::read(file.get(), block.data(), block.size());
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return std::nullopt;
        if (got == 0) break;
        if (!decoding.accepts(std::span(block).first(static_cast<std::size_t>(got)))) {
            return std::nullopt;
        }
    }
    const GdkPixbuf* const picture = decoding.finished();
    if (picture == nullptr) return std::nullopt;
    return inMemory(picture);
}

}  // namespace qrx::platform
