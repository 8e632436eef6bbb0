#pragma once

#include <map>
#include <optional>
#include <string>

#include "platform/ports/Image.h"

namespace qrx::platform {

/// Shows, at each path, the picture that a test put there.
class FakeImageCodec final : public ImageCodec {
public:
    [[nodiscard]] std::optional<Image> load(const std::string& path) const override {
        const auto found = pictures.find(path);
        if (found == pictures.end()) return std::nullopt;
        return found->second;
    }

    std::map<std::string, Image> pictures;
};

}  // namespace qrx::platform
