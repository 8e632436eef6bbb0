#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/ports/Thumbnailer.h"

namespace qrx::platform {

/// Shows, for each path, the picture that a test put there, and keeps what it was asked.
class FakeThumbnailer final : public Thumbnailer {
public:
    struct Request {
        std::string path;
        std::uint32_t maximumWidth = 0;
        std::uint32_t maximumHeight = 0;
        bool operator==(const Request&) const = default;
    };

    [[nodiscard]] std::optional<Image> thumbnail(const std::string& path,
                                                 std::uint32_t maximumWidth,
                                                 std::uint32_t maximumHeight) override {
        requests.push_back({path, maximumWidth, maximumHeight});
        if (before) before();
        const auto found = pictures.find(path);
        if (found == pictures.end()) return std::nullopt;
        return found->second;
    }

    std::map<std::string, Image> pictures;
    std::vector<Request> requests;
    std::function<void()> before;  ///< may throw
};

}  // namespace qrx::platform
