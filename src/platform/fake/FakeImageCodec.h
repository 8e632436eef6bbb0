#pragma once

#include <algorithm>
#include <cstring>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/ports/Image.h"

namespace qrx::platform {

/// Shows, at each path, the picture that a test put there. Its own file format is width, height and
/// kind of alpha in 4 bytes each (as they lie in memory), then the pixels. Scaling takes the
/// nearest pixel.
class FakeImageCodec : public ImageCodec {
public:
    [[nodiscard]] std::optional<Image> load(const std::string& path) const override {
        const auto found = pictures.find(path);
        if (found == pictures.end()) return std::nullopt;
        return found->second;
    }

    [[nodiscard]] std::optional<Image> decoded(std::span<const std::byte> file) const override {
        Header header{};
        if (file.size() < sizeof(Header)) return std::nullopt;
        std::memcpy(&header, file.data(), sizeof(Header));
        const auto pixels = file.subspan(sizeof(Header));
        if (header.kind > static_cast<std::uint32_t>(AlphaKind::noneSkipFirst)) return std::nullopt;
        Image image{header.width,
                    header.height,
                    {pixels.begin(), pixels.end()},
                    static_cast<AlphaKind>(header.kind)};
        if (!isSound(image)) return std::nullopt;
        return image;
    }

    [[nodiscard]] std::optional<std::vector<std::byte>> encoded(
        const Image& image, const ImageEncoding& encoding) const override {
        encodings.push_back(encoding);
        if (!isSound(image)) return std::nullopt;
        const Header header{image.width, image.height, static_cast<std::uint32_t>(image.alpha)};
        std::vector<std::byte> file(sizeof(Header));
        std::memcpy(file.data(), &header, sizeof(Header));
        file.insert(file.end(), image.rgba.begin(), image.rgba.end());
        return file;
    }

    [[nodiscard]] std::optional<Image> scaled(const Image& image, std::uint32_t width,
                                              std::uint32_t height) const override {
        const std::uint64_t pixels = std::uint64_t{width} * height;
        if (!isSound(image) || pixels == 0 || pixels > kMostPixels) return std::nullopt;
        Image made{width, height, {}, image.alpha};
        for (std::uint64_t y = 0; y < height; ++y) {
            for (std::uint64_t x = 0; x < width; ++x) {
                const std::uint64_t from =
                    (y * image.height / height) * image.width + x * image.width / width;
                const auto* const pixel = image.rgba.data() + from * 4;
                made.rgba.insert(made.rgba.end(), pixel, pixel + 4);
            }
        }
        return made;
    }

    std::map<std::string, Image> pictures;
    mutable std::vector<ImageEncoding> encodings;  ///< that were asked for

private:
    struct Header {
        std::uint32_t width, height, kind;
    };

    static bool isSound(const Image& image) {
        const std::uint64_t pixels = std::uint64_t{image.width} * image.height;
        return pixels != 0 && pixels <= kMostPixels && image.rgba.size() == pixels * 4;
    }
};

}  // namespace qrx::platform
