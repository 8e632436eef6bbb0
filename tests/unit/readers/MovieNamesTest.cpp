#include <string>

#include <gtest/gtest.h>

#include "MovieTestSupport.h"
#include "readers/MovieNames.h"
#include "support/BoxWriter.h"

namespace qrx {
namespace {

using namespace std::string_literals;
using test::bigEndian16;
using test::bigEndian32;
using test::box;
using test::boxStating;
using test::handlerBox;
using test::zeros;

std::optional<std::string> nameOf(const std::string& headerContents) {
    const auto movie = test::describe(box("moov", test::movieHeader() + headerContents));
    EXPECT_TRUE(movie);
    return movie ? movie->displayName : std::nullopt;
}

std::string quickTimeText(const std::string& text) {
    return box("\xA9nam",
               bigEndian16(static_cast<std::uint16_t>(text.size())) + bigEndian16(0) + text);
}
std::string data(const std::string& text, std::uint32_t kind = 1) {
    return box("data", bigEndian32(kind) + bigEndian32(0) + text);
}
std::string key(const std::string& text) {
    return box("mdta", text);
}
std::string quickTimeMetadata(const std::string& first, const std::string& second) {
    return box("meta",
               handlerBox("mdta") +
                   box("keys", bigEndian32(0) + bigEndian32(2) + key("com.apple.quicktime.make") +
                                   key(first)) +
                   box("ilst", boxStating(8 + 16 + 4, bigEndian32(1), data("Make")) +
                                   boxStating(static_cast<std::uint32_t>(24 + second.size()),
                                              bigEndian32(2), data(second))));
}

TEST(MovieNames, NoneWithoutUserData) {
    EXPECT_EQ(nameOf(""), std::nullopt);
    EXPECT_EQ(nameOf(box("udta")), std::nullopt);
    EXPECT_EQ(nameOf(box("udta", bigEndian32(0))), std::nullopt);
}

TEST(MovieNames, QuickTimeText) {
    EXPECT_EQ(nameOf(box("udta", box("\xA9mak", "x") + quickTimeText("Wäsche"))), "Wäsche");
}

TEST(MovieNames, QuickTimeTextThatClaimsMoreThanItsBox) {
    EXPECT_EQ(nameOf(box("udta", box("\xA9nam", bigEndian16(5) + bigEndian16(0) + "four"))),
              std::nullopt);
}

TEST(MovieNames, QuickTimeName) {
    EXPECT_EQ(nameOf(box("udta", box("name", "Take 3") + bigEndian32(0))), "Take 3");
    EXPECT_EQ(nameOf(box("udta", box("name", "Take 3\0\0"s))), "Take 3");
}

TEST(MovieNames, PlayerName) {
    const std::string items =
        box("ilst", box("\xA9too", data("tool")) + box("\xA9nam", data("Song")));
    EXPECT_EQ(nameOf(box("udta", box("meta", bigEndian32(0) + handlerBox("mdir") + items))),
              "Song");
}

TEST(MovieNames, PlayerNameOfAnotherKindIsPassedOver) {
    const std::string items = box("ilst", box("\xA9nam", data("\0S\0o"s, 2)));
    EXPECT_EQ(nameOf(box("udta", box("meta", bigEndian32(0) + handlerBox("mdir") + items))),
              std::nullopt);
}

TEST(MovieNames, PhoneTitle) {
    EXPECT_EQ(nameOf(box("udta", box("titl", bigEndian32(0) + bigEndian16(0x15C7) + "Clip\0"s))),
              "Clip");
}

TEST(MovieNames, QuickTimeMetadata) {
    EXPECT_EQ(nameOf(quickTimeMetadata("com.apple.quicktime.displayname", "Shown")), "Shown");
    EXPECT_EQ(nameOf(quickTimeMetadata("com.apple.quicktime.title", "Title")), "Title");
    EXPECT_EQ(nameOf(quickTimeMetadata("com.apple.quicktime.model", "Model")), std::nullopt);
}

TEST(MovieNames, TheDisplayNameComesBeforeEveryOther) {
    EXPECT_EQ(nameOf(box("udta", box("name", "Plain") + quickTimeText("Text")) +
                     quickTimeMetadata("com.apple.quicktime.displayname", "Shown")),
              "Shown");
    EXPECT_EQ(nameOf(box("udta", box("name", "Plain") + quickTimeText("Text"))), "Text");
}

TEST(MovieNames, EmptyNamesAndNamesThatAreNotUtf8ArePassedOver) {
    EXPECT_EQ(nameOf(box("udta", box("name"))), std::nullopt);
    EXPECT_EQ(nameOf(box("udta", box("name", zeros(3)))), std::nullopt);
    EXPECT_EQ(nameOf(box("udta", box("name", "W\x8Asche"))), std::nullopt);
    EXPECT_EQ(nameOf(box("udta", box("name", "W\x8Asche") +
                                     box("titl", bigEndian32(0) + bigEndian16(0) + "Clip"))),
              "Clip");
}

TEST(MovieNames, LongNamesArePassedOver) {
    EXPECT_EQ(nameOf(box("udta", box("name", std::string(MovieNames::kLongestName, 'a')))),
              std::string(MovieNames::kLongestName, 'a'));
    EXPECT_EQ(nameOf(box("udta", box("name", std::string(MovieNames::kLongestName + 1, 'a')))),
              std::nullopt);
}

TEST(MovieNames, EveryTruncationOfUserDataHasAnAnswer) {
    const std::string whole = quickTimeText("Text") + box("name", "Plain") +
                              box("titl", bigEndian32(0) + bigEndian16(0) + "Clip") +
                              box("meta", bigEndian32(0) + handlerBox("mdir") +
                                              box("ilst", box("\xA9nam", data("Song"))));
    const std::string metadata = quickTimeMetadata("com.apple.quicktime.title", "Title");
    for (std::size_t cut = 0; cut <= whole.size(); ++cut)
        (void)nameOf(box("udta", whole.substr(0, cut)));
    for (std::size_t cut = 0; cut < metadata.size(); ++cut)
        EXPECT_NE(nameOf(metadata.substr(0, cut)), "Title") << cut;
    EXPECT_EQ(nameOf(metadata), "Title");
}

}  // namespace
}  // namespace qrx
