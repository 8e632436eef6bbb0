#include "readers/MovieNames.h"

#include <algorithm>

#include "foundation/Text.h"

namespace qrx {

namespace {

constexpr std::uint32_t kCopyrightName = 0xA96E616D;  // "©nam" in the Mac's character set
constexpr std::uint32_t kDataIsUtf8 = 1;
constexpr std::uint32_t kMostKeys = 1000;
constexpr std::string_view kDisplayNameKey = "com.apple.quicktime.displayname";
constexpr std::string_view kTitleKey = "com.apple.quicktime.title";

/// A QuickTime `meta` holds boxes at once, an ISO one a version (4 bytes) before them.
Box withoutVersion(ByteWindow& window, const Box& meta) {
    const auto front = payloadBytes(window, meta, 0, 8);
    Box inside = meta;
    if (front && bigEndian32(front->subspan(4)) != fourCharacters("hdlr")) inside.payload += 4;
    return inside;
}

/// The numbers (from 1) of the two keys that name a movie; 0 where a key is missing.
std::array<std::uint32_t, 2> numbersOfNameKeys(ByteWindow& window, const Box& keys) {
    std::array<std::uint32_t, 2> numbers{};
    Box entries = keys;
    entries.payload += std::min<std::uint64_t>(8, keys.payloadSize());  // version and count
    BoxReader list(window, entries);  // an entry is laid out like a box: size, name space, key
    for (std::uint32_t number = 1; number <= kMostKeys; ++number) {
        const auto entry = list.next();
        if (!entry) break;
        const std::uint64_t length = entry->payloadSize();
        if (length != kDisplayNameKey.size() && length != kTitleKey.size()) continue;
        const auto key = payloadBytes(window, *entry, 0, static_cast<std::size_t>(length));
        if (!key) continue;
        if (textOf(*key) == kDisplayNameKey) numbers[0] = number;
        if (textOf(*key) == kTitleKey) numbers[1] = number;
    }
    return numbers;
}

}  // namespace

void MovieNames::take(Place place, ByteWindow& window, const Box& box, std::uint64_t offset,
                      std::uint64_t length) {
    if (length > kLongestName || names_[place]) return;
    const auto bytes = payloadBytes(window, box, offset, static_cast<std::size_t>(length));
    if (!bytes) return;
    std::string name = textOf(*bytes);
    name.erase(std::find(name.begin(), name.end(), '\0'), name.end());
    if (!name.empty() && isUtf8(name)) names_[place] = std::move(name);
}

void MovieNames::readUserData(ByteWindow& window, const Box& udta) {
    BoxReader boxes(window, udta);
    while (const auto box = boxes.next()) {
        const std::uint64_t size = box->payloadSize();
        if (box->type == kCopyrightName && size > 4) {
            const auto length = payloadBytes(window, *box, 0, 2);
            if (length) take(quickTimeText, window, *box, 4, bigEndian16(*length));
        } else if (box->type == fourCharacters("name")) {
            take(quickTimeName, window, *box, 0, size);
        } else if (box->type == fourCharacters("titl") && size > 6) {
            take(phoneTitle, window, *box, 6, size - 6);
        } else if (box->type == fourCharacters("meta")) {
            readMetadata(window, *box);
        }
    }
}

void MovieNames::readMetadata(ByteWindow& window, const Box& meta) {
    if (meta.payloadSize() < 8) return;
    std::array<std::uint32_t, 2> numbers{};
    BoxReader boxes(window, withoutVersion(window, meta));
    while (const auto box = boxes.next()) {
        if (box->type == fourCharacters("keys")) numbers = numbersOfNameKeys(window, *box);
        if (box->type == fourCharacters("ilst")) readItems(window, *box, numbers);
    }
}

void MovieNames::readItems(ByteWindow& window, const Box& ilst,
                           const std::array<std::uint32_t, 2>& keys) {
    BoxReader items(window, ilst);
    while (const auto item = items.next()) {
        std::optional<Place> place;
        if (item->type == kCopyrightName) place = playerName;
        if (item->type != 0 && item->type == keys[0]) place = displayNameKey;
        if (item->type != 0 && item->type == keys[1]) place = titleKey;
        if (!place) continue;
        const auto data = firstBox(window, *item, fourCharacters("data"));
        if (!data) continue;
        const auto kind = payloadBytes(window, *data, 0, 8);  // kind of data and its language
        if (!kind || bigEndian32(*kind) != kDataIsUtf8) continue;
        take(*place, window, *data, 8, data->payloadSize() - 8);
    }
}

std::optional<std::string> MovieNames::best() const {
    const auto first = std::find_if(names_.begin(), names_.end(),
                                    [](const auto& name) { return name.has_value(); });
    return first == names_.end() ? std::nullopt : *first;
}

}  // namespace qrx
