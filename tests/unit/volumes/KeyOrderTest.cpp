#include <cstddef>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "volumes/KeyOrder.h"

namespace qrx {
namespace {

std::optional<std::size_t> lengthUnlessEmpty(const FilePath& file) {
    if (file.empty()) return std::nullopt;
    return file.size();
}

TEST(OrderedByKey, EqualKeysKeepTheirOrder) {
    EXPECT_EQ(orderedByKey({"ccc", "b", "aaa", "a"}, lengthUnlessEmpty),
              (FilePaths{"b", "a", "ccc", "aaa"}));
    EXPECT_EQ(orderedByKey({}, lengthUnlessEmpty), FilePaths{});
}

TEST(OrderedByKey, NothingWhereAFileHasNoKey) {
    EXPECT_FALSE(orderedByKey({"a", "", "b"}, lengthUnlessEmpty));
}

TEST(ByNameIgnoringCase, ComparesNamesCharacterByCharacter) {
    EXPECT_EQ(byNameIgnoringCase({"/x/CLIP9", "/x/clip10", "/x/aB", "/x/a_"}),
              (FilePaths{"/x/a_", "/x/aB", "/x/clip10", "/x/CLIP9"}));
    EXPECT_EQ(byNameIgnoringCase({"/z/x.mp4", "/a/X.MP4"}), (FilePaths{"/z/x.mp4", "/a/X.MP4"}));
}

TEST(Characters, AreCountedInUtf16Units) {
    EXPECT_EQ(firstCharacters("abcdef", 4), "abcd");
    EXPECT_EQ(lastCharacters("abcdef", 4), "cdef");
    EXPECT_EQ(firstCharacters("abc", 4), std::nullopt);
    EXPECT_EQ(lastCharacters("abc", 4), std::nullopt);
    EXPECT_EQ(firstCharacters("abc", 0), "");
    const std::string umlauts = "\xC3\xA4\xC3\xB6\xC3\xBC";
    EXPECT_EQ(firstCharacters(umlauts, 2), "\xC3\xA4\xC3\xB6");
    EXPECT_EQ(lastCharacters(umlauts, 2), "\xC3\xB6\xC3\xBC");
    EXPECT_EQ(firstCharacters(umlauts, 4), std::nullopt);
    const std::string clapper = "\xF0\x9F\x8E\xAC";  // two units
    EXPECT_EQ(firstCharacters(clapper + "a", 2), clapper);
    EXPECT_EQ(lastCharacters("a" + clapper, 2), clapper);
}

}  // namespace
}  // namespace qrx
