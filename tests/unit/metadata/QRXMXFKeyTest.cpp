#include <string>

#include <gtest/gtest.h>

#include "metadata/QRXMXFKey.h"

namespace qrx {
namespace {

QRXMXFKey::Bytes bytes(std::initializer_list<int> values) {
    QRXMXFKey::Bytes result;
    for (const int value : values) {
        result.push_back(static_cast<std::byte>(value));
    }
    return result;
}

TEST(MxfKey, StartsEmpty) {
    const QRXMXFKey key;
    EXPECT_EQ(key.keyIdentifier(), "");
    EXPECT_EQ(key.keyDescription(), "");
    EXPECT_EQ(key.keyValue(), QRXMediaMetadataNotFound);
    EXPECT_TRUE(key.globalKey().empty());
    EXPECT_TRUE(key.localKey().empty());
    EXPECT_TRUE(key.hexLocalKeyLength().empty());
}

TEST(MxfKey, KeepsItsBytes) {
    QRXMXFKey key("Id", "Text", "1");
    key.setGlobalKey(bytes({0x06, 0x0E}));
    key.setLocalKey(bytes({0x15, 0x01}));
    key.setHexLocalKeyLength(bytes({0x00, 0x08}));
    const QRXMXFKey copy = key;
    EXPECT_EQ(copy.globalKey(), bytes({0x06, 0x0E}));
    EXPECT_EQ(copy.localKey(), bytes({0x15, 0x01}));
    EXPECT_EQ(copy.hexLocalKeyLength(), bytes({0x00, 0x08}));
    EXPECT_EQ(copy.keyIdentifier(), "Id");
}

TEST(MxfKey, AbsentValueEmptiesTheIdentifierAsForEveryKey) {
    EXPECT_EQ(QRXMXFKey("Id", "Text", std::nullopt).keyIdentifier(), "");
}

TEST(MxfKey, IsEqualByItsLabelAlone) {
    QRXMXFKey a("A", "a", "1");
    a.setGlobalKey(bytes({1, 2}));
    a.setLocalKey(bytes({3}));
    QRXMXFKey b("B", "b", "2");
    b.setGlobalKey(bytes({1, 2}));
    EXPECT_EQ(a, b);
    EXPECT_TRUE(a.isEqual(b));

    b.setGlobalKey(bytes({1, 2, 3}));
    b.setLocalKey(a.localKey());
    EXPECT_NE(a, b);
    EXPECT_FALSE(a.isEqual(b));
    EXPECT_EQ(QRXMXFKey("A", "a", "1"), QRXMXFKey());  // two labels without bytes
}

TEST(MxfKey, IsNeverEqualToAPlainKey) {
    EXPECT_FALSE(QRXMXFKey().isEqual(QRXMetadataKey()));
    const QRXMXFKey key;
    const QRXMetadataKey& seenAsBase = key;
    EXPECT_TRUE(QRXMXFKey().isEqual(seenAsBase));
}

}  // namespace
}  // namespace qrx
