#include <cstddef>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "metadata/MetadataArchive.h"
#include "metadata/QRXMXFKey.h"
#include "metadata/QRXMXFMetadataWrapper.h"
#include "support/PythonArchives.h"

namespace qrx {
namespace {

constexpr auto kBinary = PropertyListFormat::binary;
constexpr auto kXml = PropertyListFormat::xml;

const std::string kNotFound(QRXMediaMetadataNotFound);

QRXMetadataKey startTimecode() {
    return {"QRXMediaMetadataStartTimecodeKey", "Start Timecode", "01:00:00;00"};
}

TEST(MetadataKeyArchive, KeepsTheThreeFields) {
    for (const auto format : {kBinary, kXml}) {
        const auto key = metadataKeyOfArchive(keyedArchiveOf(startTimecode(), format).value());
        ASSERT_TRUE(key);
        EXPECT_EQ(key->keyIdentifier(), "QRXMediaMetadataStartTimecodeKey");
        EXPECT_EQ(key->keyDescription(), "Start Timecode");
        EXPECT_EQ(key->keyValue(), "01:00:00;00");
    }
}

TEST(MetadataKeyArchive, IsReadByPython) {
    for (const auto format : {kBinary, kXml}) {
        EXPECT_EQ(test::readByPython(keyedArchiveOf(startTimecode(), format).value()),
                  R"({"$classes": ["QRXMetadataKey", "NSObject"], )"
                  R"("metaKeyDescription": "Start Timecode", )"
                  R"("metaKeyId": "QRXMediaMetadataStartTimecodeKey", )"
                  R"("metaKeyValue": "01:00:00;00"})");
    }
}

TEST(MetadataKeyArchive, AbsentFieldsAreNotWritten) {
    const QRXMetadataKey key(std::nullopt, std::nullopt, "5");
    EXPECT_EQ(test::readByPython(keyedArchiveOf(key).value()),
              R"({"$classes": ["QRXMetadataKey", "NSObject"], "metaKeyValue": "5"})");
}

TEST(MetadataKeyArchive, MissingFieldsAreThoseOfAnEmptyKey) {
    for (const auto format : {kBinary, kXml}) {
        const auto key = metadataKeyOfArchive(
            test::writtenByPython(R"({"$classes": ["QRXMetadataKey", "NSObject"]})", format));
        ASSERT_TRUE(key);
        EXPECT_EQ(key->keyIdentifier(), "");
        EXPECT_EQ(key->keyDescription(), "");
        EXPECT_EQ(key->keyValue(), kNotFound);
    }
}

TEST(MetadataKeyArchive, IdentifierWithoutAValueIsTakenAsItStands) {
    const auto key = metadataKeyOfArchive(test::writtenByPython(
        R"({"$classes": ["QRXMetadataKey", "NSObject"], "metaKeyId": "A"})", kBinary));
    ASSERT_TRUE(key);
    EXPECT_EQ(key->keyIdentifier(), "A");
    EXPECT_EQ(key->keyValue(), kNotFound);
}

TEST(MetadataKeyArchive, FieldOfAnotherKindIsMissing) {
    const auto key = metadataKeyOfArchive(test::writtenByPython(
        R"({"$classes": ["QRXMetadataKey", "NSObject"], "metaKeyValue": 5, "metaKeyId": [],)"
        R"( "metaKeyDescription": {"$classes": ["Other", "NSObject"]}})",
        kXml));
    ASSERT_TRUE(key);
    EXPECT_EQ(key->keyIdentifier(), "");
    EXPECT_EQ(key->keyDescription(), "");
    EXPECT_EQ(key->keyValue(), kNotFound);
}

TEST(MetadataKeyArchive, MxfKeyKeepsItsClassAndNoBytes) {
    QRXMXFKey key("QRXMediaMetadataUMIDKey", "UMID Number", "060a");
    key.setGlobalKey({std::byte{6}, std::byte{14}});
    const auto bytes = keyedArchiveOf(key);
    ASSERT_TRUE(bytes);
    EXPECT_EQ(test::readByPython(*bytes),
              R"({"$classes": ["QRXMXFKey", "QRXMetadataKey", "NSObject"], )"
              R"("metaKeyDescription": "UMID Number", "metaKeyId": "QRXMediaMetadataUMIDKey", )"
              R"("metaKeyValue": "060a"})");
    const auto decoded = std::dynamic_pointer_cast<QRXMXFKey>(metadataKeyOfArchive(*bytes));
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->keyIdentifier(), "QRXMediaMetadataUMIDKey");
    EXPECT_EQ(decoded->keyDescription(), "UMID Number");
    EXPECT_EQ(decoded->keyValue(), "060a");
    EXPECT_TRUE(decoded->globalKey().empty());
}

TEST(MetadataKeyArchive, OfAnotherClassIsNoKey) {
    const auto other = test::writtenByPython(R"({"$classes": ["Other", "NSObject"]})", kBinary);
    EXPECT_FALSE(metadataKeyOfArchive(other));
    EXPECT_FALSE(metadataWrapperOfArchive(other));
    EXPECT_FALSE(metadataKeyOfArchive(keyedArchiveOf(QRXMetadataWrapper()).value()));
    EXPECT_FALSE(metadataWrapperOfArchive(keyedArchiveOf(startTimecode()).value()));
    EXPECT_FALSE(metadataKeyOfArchive({}));
    EXPECT_FALSE(metadataWrapperOfArchive({}));
}

/// Every key of the table with a value of its own.
template <class Wrapper>
Wrapper filled() {
    Wrapper wrapper;
    for (const auto& row : Wrapper::keyDescriptionDictionary()) {
        wrapper.replaceValueForKeyEntryWithIdentifier(row.identifier, "value of " + row.identifier);
    }
    return wrapper;
}

TEST(MetadataWrapperArchive, KeepsAllKeysOfTheBaseTable) {
    for (const auto format : {kBinary, kXml}) {
        const auto wrapper =
            metadataWrapperOfArchive(keyedArchiveOf(filled<QRXMetadataWrapper>(), format).value());
        ASSERT_TRUE(wrapper);
        EXPECT_EQ(wrapper->metadataKeys().size(), 25U);
        for (const auto& row : QRXMetadataWrapper::keyDescriptionDictionary()) {
            EXPECT_EQ(wrapper->valueForKey(row.identifier), "value of " + row.identifier);
        }
        EXPECT_EQ(wrapper->metadataKeys().front()->keyDescription(), "Video Codec");
    }
}

TEST(MetadataWrapperArchive, KeysWithoutAValueStayWithout) {
    const auto wrapper = metadataWrapperOfArchive(keyedArchiveOf(QRXMetadataWrapper()).value());
    ASSERT_TRUE(wrapper);
    for (const auto& row : QRXMetadataWrapper::keyDescriptionDictionary()) {
        EXPECT_TRUE(wrapper->keyExistsWithIdentifier(row.identifier));
        EXPECT_FALSE(wrapper->valueForKey(row.identifier));
    }
}

TEST(MetadataWrapperArchive, KeptKeysBesideTheBaseTableAreLost) {
    const auto bytes = keyedArchiveOf(filled<QRXMXFMetadataWrapper>());
    ASSERT_TRUE(bytes);
    EXPECT_NE(test::readByPython(*bytes).find("QRXMXFMediaMetadataUUIDKey"), std::string::npos);
    const auto wrapper = metadataWrapperOfArchive(*bytes);
    ASSERT_TRUE(wrapper);
    EXPECT_EQ(wrapper->metadataKeys().size(), 25U);
    EXPECT_FALSE(wrapper->keyExistsWithIdentifier(QRXMXFMediaMetadataUUIDKey));
    EXPECT_EQ(wrapper->valueForKey(QRXMediaMetadataUMIDKey), "value of QRXMediaMetadataUMIDKey");
}

TEST(MetadataWrapperArchive, HoldsItsKeysUnderTheirIdentifiers) {
    QRXMetadataWrapper wrapper;
    wrapper.setMetadataKeys({std::make_shared<QRXMetadataKey>(startTimecode())});
    for (const auto format : {kBinary, kXml}) {
        EXPECT_EQ(
            test::readByPython(keyedArchiveOf(wrapper, format).value()),
            R"({"$classes": ["QRXMetadataWrapper", "QRXMediaObject", "QRXObject", "NSObject"],)"
            R"( "QRXMediaMetadataStartTimecodeKey": )"
            R"({"$classes": ["QRXMetadataKey", "NSObject"], )"
            R"("metaKeyDescription": "Start Timecode", )"
            R"("metaKeyId": "QRXMediaMetadataStartTimecodeKey", )"
            R"("metaKeyValue": "01:00:00;00"}})");
    }
}

TEST(MetadataWrapperArchive, OfPythonIsRead) {
    const std::string json =
        R"({"$classes": ["QRXMetadataWrapper", "QRXMediaObject", "QRXObject", "NSObject"],)"
        R"( "QRXMediaMetadataGopSizeKey": {"$classes": ["QRXMetadataKey", "NSObject"],)"
        R"( "metaKeyDescription": "Gop Size", "metaKeyValue": "12",)"
        R"( "metaKeyId": "QRXMediaMetadataGopSizeKey"},)"
        R"( "QRXMediaMetadataFileSizeKey": "no key at all",)"
        R"( "QRXMediaMetadataUMIDKey": {"$classes": ["Other", "NSObject"]},)"
        R"( "Unknown": {"$classes": ["QRXMetadataKey", "NSObject"], "metaKeyId": "Unknown"}})";
    for (const auto format : {kBinary, kXml}) {
        const auto wrapper = metadataWrapperOfArchive(test::writtenByPython(json, format));
        ASSERT_TRUE(wrapper);
        ASSERT_EQ(wrapper->metadataKeys().size(), 1U);
        EXPECT_EQ(wrapper->valueForKey("QRXMediaMetadataGopSizeKey"), "12");
    }
}

TEST(MetadataWrapperArchive, MxfWrapperKeepsItsClassWhenMovedIntoAPlainOne) {
    const QRXMetadataWrapper plain = filled<QRXMXFMetadataWrapper>();
    const ArchiveClasses classes{"QRXMXFMetadataWrapper", "QRXMetadataWrapper", "QRXMediaObject",
                                 "QRXObject", "NSObject"};
    EXPECT_EQ(plain.archiveClasses(), classes);
    auto decoded = metadataWrapperOfArchive(keyedArchiveOf(plain).value());
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->archiveClasses(), classes);
    decoded->initializeMetadataKeys();
    EXPECT_EQ(decoded->metadataKeys().size(), 33U);
}

TEST(MetadataWrapperArchive, OfTwoKeysWithOneIdentifierTheLaterIsWritten) {
    QRXMetadataWrapper wrapper;
    wrapper.setMetadataKeys(
        {std::make_shared<QRXMetadataKey>("QRXMediaMetadataUMIDKey", "", "first"),
         std::make_shared<QRXMetadataKey>("QRXMediaMetadataUMIDKey", "", "second")});
    const auto decoded = metadataWrapperOfArchive(keyedArchiveOf(wrapper).value());
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->metadataKeys().size(), 1U);
    EXPECT_EQ(decoded->valueForKey("QRXMediaMetadataUMIDKey"), "second");
}

TEST(MetadataWrapperArchive, KeyWithoutAnIdentifierIsLeftOut) {
    QRXMetadataWrapper wrapper;
    wrapper.setMetadataKeys({std::make_shared<QRXMetadataKey>(std::nullopt, "", "value")});
    const auto decoded = metadataWrapperOfArchive(keyedArchiveOf(wrapper).value());
    ASSERT_TRUE(decoded);
    EXPECT_TRUE(decoded->metadataKeys().empty());
}

/// Small enough for every cut and every change to be tried.
QRXMetadataWrapper wrapperOfOneKey() {
    QRXMetadataWrapper wrapper;
    wrapper.setMetadataKeys({std::make_shared<QRXMetadataKey>(startTimecode())});
    return wrapper;
}

TEST(MetadataWrapperArchive, IsRefusedWhereverItIsCut) {
    for (const auto format : {kBinary, kXml}) {
        auto bytes = keyedArchiveOf(wrapperOfOneKey(), format).value();
        while (bytes.back() == std::byte{'\n'})
            bytes.pop_back();
        for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
            SCOPED_TRACE(cut);
            ASSERT_FALSE(metadataWrapperOfArchive(std::span(bytes).first(cut)));
        }
    }
}

TEST(MetadataWrapperArchive, SurvivesEveryByteFlipped) {
    for (const auto format : {kBinary, kXml}) {
        auto bytes = keyedArchiveOf(wrapperOfOneKey(), format).value();
        std::size_t refused = 0;
        for (std::byte& byte : bytes) {
            byte = ~byte;
            const auto wrapper = metadataWrapperOfArchive(bytes);
            byte = ~byte;
            if (!wrapper) {
                ++refused;
            } else {
                EXPECT_LE(wrapper->metadataKeys().size(), 1U);
            }
        }
        EXPECT_GT(refused, 0U);
    }
}

}  // namespace
}  // namespace qrx
