#pragma once

#include <array>
#include <optional>
#include <string>

#include "readers/BoxReader.h"

namespace qrx {

/// The names that a movie's user data give it.
///
///     udta/©nam                    QuickTime text: size (2 bytes), language (2), text
///     udta/name                    QuickTime, the plain text
///     udta/meta/ilst/©nam/data     as MP4 players write it
///     udta/titl                    3GPP: version (4), language (2), text
///     meta/keys + meta/ilst        QuickTime metadata: com.apple.quicktime.displayname, .title
///
/// Text that is not UTF-8 (old names in the codes of their language), empty text and text over
/// kLongestName are passed over.
class MovieNames {
public:
    static constexpr std::size_t kLongestName = 4096;  ///< bytes

    /// Takes what the box `udta` of the movie header has.
    void readUserData(ByteWindow& window, const Box& udta);
    /// Takes what a box `meta` has, of the movie header itself or of its user data.
    void readMetadata(ByteWindow& window, const Box& meta);

    /// The first of the places above that has a name, the QuickTime metadata before the others.
    [[nodiscard]] std::optional<std::string> best() const;

private:
    enum Place { displayNameKey, titleKey, quickTimeText, quickTimeName, playerName, phoneTitle };
    static constexpr std::size_t kPlaces = phoneTitle + 1;

    void take(Place place, ByteWindow& window, const Box& box, std::uint64_t offset,
              std::uint64_t length);
    void readItems(ByteWindow& window, const Box& ilst, const std::array<std::uint32_t, 2>& keys);

    std::array<std::optional<std::string>, kPlaces> names_;
};

}  // namespace qrx
