#pragma once

#include <cstddef>
#include <iconv.h>
#include <string>
#include <string_view>

namespace qrx::platform {

/// One conversion between encodings, by the C library.
class Iconv {
public:
    Iconv(const std::string& to, const std::string& from);
    ~Iconv();
    Iconv(const Iconv&) = delete;
    Iconv& operator=(const Iconv&) = delete;

    /// Whether both encodings are known.
    [[nodiscard]] bool isKnown() const;

    /// Appends what `input` gives and removes that from its front. It stops at what cannot be
    /// converted, or is cut short, and then answers NO.
    [[nodiscard]] bool convert(std::string_view& input, std::string& output);
    /// Appends what brings the output back to its first state.
    void finish(std::string& output);

private:
    iconv_t conversion_;
};

}  // namespace qrx::platform
