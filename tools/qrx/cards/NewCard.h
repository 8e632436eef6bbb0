#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace qrx::tool {

/// Why a card could not be made, as a message for the user.
class CardProblem : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A card that is being made in a folder of its own. What was made is removed again at the end of
/// this object, unless `keep` was called; nothing that was there before is ever changed.
class NewCard {
public:
    /// Makes the folder, and those above it that are missing. Throws CardProblem when something
    /// else than an empty folder is there.
    explicit NewCard(std::string folder);
    ~NewCard();
    NewCard(const NewCard&) = delete;
    NewCard& operator=(const NewCard&) = delete;

    /// Absolute path of the card's folder.
    [[nodiscard]] const std::string& folder() const { return folder_; }

    // Names are relative to the card's folder, with "/"; the folders above a file are made with it.
    // All throw CardProblem.

    void makeFolder(std::string_view name);
    void write(std::string_view name, std::string_view bytes);
    void copy(std::string_view from, std::string_view to);
    /// Path at which somebody else is going to write a file.
    [[nodiscard]] std::string pathForNewFile(std::string_view name);
    /// Size in bytes.
    [[nodiscard]] std::uintmax_t sizeOf(std::string_view name) const;

    void keep() { isKept_ = true; }

private:
    void makeFoldersDownTo(const std::string& folder);
    void removeWhatWasMade() noexcept;

    std::string folder_;
    std::vector<std::string> made_;  ///< files and folders, oldest first
    bool isKept_ = false;
};

}  // namespace qrx::tool
