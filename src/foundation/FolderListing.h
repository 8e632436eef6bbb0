#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/FilePath.h"
#include "foundation/OpenFolder.h"

namespace qrx {

/// What an entry of a folder is in itself; a link is a link whatever it leads to.
enum class EntryKind : std::uint8_t {
    vanished,  ///< it cannot be examined: gone, or in a folder that may be listed but not searched
    folder,
    link,   ///< symbolic link
    other,  ///< regular file, FIFO, socket or device
};

struct FolderEntry {
    std::string_view name;  ///< a NUL follows it, so that name.data() can be given to the system
    EntryKind kind = EntryKind::vanished;
};

/// The entries of one folder in name order, hidden ones included, "." and ".." not.
class FolderListing {
public:
    FolderListing() = default;
    /// Reads `folder` to its end. The entries' kinds come with the names where the file system
    /// gives them, so that nothing is asked per file.
    explicit FolderListing(const OpenFolder& folder);

    [[nodiscard]] std::size_t size() const { return entries_.size(); }
    /// Valid as long as this listing stays where it is.
    [[nodiscard]] FolderEntry operator[](std::size_t index) const;
    /// Whether reading ended in an error (a damaged card); what was read before is there.
    [[nodiscard]] bool isCutShort() const { return cutShort_; }

private:
    struct Entry {
        std::size_t offset;
        std::uint32_t length;
        EntryKind kind;
    };
    struct SortKeys;

    void append(std::string_view name, EntryKind kind);
    [[nodiscard]] std::string_view name(const Entry& entry) const;
    void sortInNameOrder();

    std::string names_;  ///< each name followed by a NUL
    std::vector<Entry> entries_;
    bool cutShort_ = false;
};

/// The kind of the entry `name` of `folder`, for which a listing gave the type `directoryType`
/// (DT_REG and the like); asks the file system only where that says nothing.
[[nodiscard]] EntryKind entryKind(int folder, const char* name, unsigned char directoryType);

/// The names in the folder at `path`, or behind a link to one, in name order. Nothing when there is
/// no folder that can be read.
[[nodiscard]] std::optional<std::vector<std::string>> namesInFolder(const FilePath& path);

}  // namespace qrx
