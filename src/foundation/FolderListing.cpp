#include "foundation/FolderListing.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>

#include "foundation/Text.h"
#include "foundation/Utf8.h"

namespace qrx {

namespace {

constexpr std::size_t kHeadBytes = sizeof(std::uint64_t);

bool isDotOrDotDot(const char* name) {
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

std::size_t commonPrefix(std::string_view a, std::string_view b) {
    const auto ends = std::mismatch(
        a.begin(), a.begin() + static_cast<std::ptrdiff_t>(std::min(a.size(), b.size())),
        b.begin());
    return static_cast<std::size_t>(ends.first - a.begin());
}

/// The first eight bytes as one number that sorts as they do; a key that ends before is filled with
/// zeros, which no key contains as a whole unit.
std::uint64_t head(std::string_view key) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < kHeadBytes; ++i) {
        value = (value << 8U) | (i < key.size() ? static_cast<unsigned char>(key[i]) : 0U);
    }
    return value;
}

std::string_view tail(std::string_view key, std::size_t from) {
    return key.substr(std::min(from, key.size()));
}

/// Bytes that compare as the UTF-16 units of the lower-cased name do.
std::string unitBytes(std::string_view name) {
    std::string bytes;
    for (const char16_t unit : utf16Units(lowerCased(name))) {
        bytes += static_cast<char>(unit >> 8U);
        bytes += static_cast<char>(unit & 0xFFU);
    }
    return bytes;
}

}  // namespace

/// The lower-cased names, worked out once for a whole folder. Where every name is ASCII the bytes
/// themselves compare as the units would.
struct FolderListing::SortKeys {
    struct Key {
        std::uint64_t head = 0;  ///< after what all keys of the folder have in common
        std::size_t index = 0;
    };

    explicit SortKeys(const FolderListing& listing) : listing_(listing) {
        const bool ascii = isAscii(listing.names_);
        if (ascii) bytes_ = lowerCased(listing.names_);
        ranges_.reserve(listing.size());
        for (const Entry& entry : listing.entries_) {
            if (ascii) {
                ranges_.emplace_back(entry.offset, entry.length);
            } else {
                const std::string key = unitBytes(listing.name(entry));
                ranges_.emplace_back(bytes_.size(), key.size());
                bytes_ += key;
            }
        }
        common_ = text(0).size();
        for (std::size_t i = 1; i < ranges_.size() && common_ > 0; ++i) {
            common_ = commonPrefix(text(i - 1).substr(0, common_), text(i));
        }
    }

    [[nodiscard]] std::vector<Key> sorted() const {
        std::vector<Key> keys(ranges_.size());
        for (std::size_t i = 0; i < keys.size(); ++i) {
            keys[i] = {head(tail(text(i), common_)), i};
        }
        std::sort(keys.begin(), keys.end(),
                  [this](const Key& a, const Key& b) { return precedes(a, b); });
        return keys;
    }

private:
    [[nodiscard]] std::string_view text(std::size_t index) const {
        return std::string_view(bytes_).substr(ranges_[index].first, ranges_[index].second);
    }

    [[nodiscard]] bool precedes(const Key& a, const Key& b) const {
        if (a.head != b.head) return a.head < b.head;
        const int order = tail(text(a.index), common_ + kHeadBytes)
                              .compare(tail(text(b.index), common_ + kHeadBytes));
        if (order != 0) return order < 0;
        return listing_.name(listing_.entries_[a.index]) <
               listing_.name(listing_.entries_[b.index]);
    }

    const FolderListing& listing_;
    std::string bytes_;
    std::vector<std::pair<std::size_t, std::size_t>> ranges_;  ///< offset and length in bytes_
    std::size_t common_ = 0;
};

FolderListing::FolderListing(const OpenFolder& folder) {
    while (true) {
        errno = 0;
        // NOLINTNEXTLINE(concurrency-mt-unsafe): no other thread has this stream
        const dirent* const entry = ::readdir(folder.stream());
        if (entry == nullptr) break;
        if (isDotOrDotDot(entry->d_name)) continue;
        append(entry->d_name, entryKind(folder.descriptor(), entry->d_name, entry->d_type));
    }
    cutShort_ = errno != 0;
    sortInNameOrder();
}

FolderEntry FolderListing::operator[](std::size_t index) const {
    return {name(entries_[index]), entries_[index].kind};
}

void FolderListing::append(std::string_view name, EntryKind kind) {
    entries_.push_back({names_.size(), static_cast<std::uint32_t>(name.size()), kind});
    names_.append(name).push_back('\0');
}

std::string_view FolderListing::name(const Entry& entry) const {
    return std::string_view(names_).substr(entry.offset, entry.length);
}

void FolderListing::sortInNameOrder() {
    if (entries_.size() < 2) return;
    const SortKeys keys(*this);
    std::vector<Entry> ordered;
    ordered.reserve(entries_.size());
    for (const SortKeys::Key& key : keys.sorted()) {
        ordered.push_back(entries_[key.index]);
    }
    entries_ = std::move(ordered);
}

EntryKind entryKind(int folder, const char* name, unsigned char directoryType) {
    if (directoryType == DT_DIR) return EntryKind::folder;
    if (directoryType == DT_LNK) return EntryKind::link;
    if (directoryType != DT_UNKNOWN) return EntryKind::other;
    struct stat item {};
    if (::fstatat(folder, name, &item, AT_SYMLINK_NOFOLLOW) != 0) return EntryKind::vanished;
    if (S_ISDIR(item.st_mode)) return EntryKind::folder;
    return S_ISLNK(item.st_mode) ? EntryKind::link : EntryKind::other;
}

std::optional<std::vector<std::string>> namesInFolder(const FilePath& path) {
    if (path.find('\0') != FilePath::npos) return std::nullopt;
    const OpenFolder folder(AT_FDCWD, path.c_str(), LastLink::follow);
    if (!folder) return std::nullopt;
    const FolderListing listing(folder);
    std::vector<std::string> names;
    names.reserve(listing.size());
    for (std::size_t i = 0; i < listing.size(); ++i) {
        names.emplace_back(listing[i].name);
    }
    return names;
}

}  // namespace qrx
