#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qrx::tool {

/// `text` for a page: in the text of an element or in an attribute between double quotes.
[[nodiscard]] std::string htmlText(std::string_view text);

/// Any bytes as one line that is safe to show (see ShownText), for a page.
[[nodiscard]] std::string htmlShown(std::string_view bytes);

// How people read numbers. "–" for what is not known.
inline constexpr std::string_view kNotKnown = "–";

/// "1.50 MB": two decimals, decimal units; whole bytes below 1 kB.
[[nodiscard]] std::string sizeForPeople(std::uint64_t bytes);
/// "0:01:02" for an hour or more, "1:02.3" below.
[[nodiscard]] std::string durationForPeople(double seconds);
/// "1,204"
[[nodiscard]] std::string countForPeople(std::uint64_t count);
/// "1 clip", "1,204 clips"
[[nodiscard]] std::string counted(std::uint64_t count, std::string_view one, std::string_view many);

}  // namespace qrx::tool
