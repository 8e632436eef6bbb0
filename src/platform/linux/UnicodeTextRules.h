#pragma once

#include "platform/ports/TextRules.h"

namespace qrx::platform {

/// Unicode's tables as GLib carries them. No answer depends on the locale: "i" is never dotted or
/// undotted the Turkish way.
class UnicodeTextRules final : public TextRules {
public:
    [[nodiscard]] std::string upperCased(std::string_view text) const override;
    [[nodiscard]] std::string lowerCased(std::string_view text) const override;
    [[nodiscard]] bool isDecimalDigit(char32_t code) const override;
    [[nodiscard]] bool isLetterOrMark(char32_t code) const override;
};

}  // namespace qrx::platform
