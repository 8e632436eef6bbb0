#include <memory>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "metadata/QRXMetadataKey.h"
#include "platform/fake/RecordingSystemLog.h"
#include "platform/ports/Services.h"

namespace qrx {
namespace {

TEST(MetadataKey, IsEmptyAndNotFoundAtFirst) {
    const QRXMetadataKey key;
    EXPECT_EQ(key.keyIdentifier(), "");
    EXPECT_EQ(key.keyDescription(), "");
    EXPECT_EQ(key.keyValue(), "QRXMediaMetadataNotFound");
}

TEST(MetadataKey, TakesWhatItIsMadeOf) {
    const QRXMetadataKey key("id", "Title", "value");
    EXPECT_EQ(key.keyIdentifier(), "id");
    EXPECT_EQ(key.keyDescription(), "Title");
    EXPECT_EQ(key.keyValue(), "value");
}

TEST(MetadataKey, KeptWithoutAValueTheIdentifierBecomesEmpty) {
    const QRXMetadataKey key("id", "Title", std::nullopt);
    EXPECT_EQ(key.keyIdentifier(), "");
    EXPECT_EQ(key.keyDescription(), "Title");
    EXPECT_EQ(key.keyValue(), std::nullopt);
}

TEST(MetadataKey, AnAbsentIdentifierOrDescriptionStaysAbsent) {
    const QRXMetadataKey key(std::nullopt, std::nullopt, "value");
    EXPECT_EQ(key.keyIdentifier(), std::nullopt);
    EXPECT_EQ(key.keyDescription(), std::nullopt);
    EXPECT_EQ(key.keyValue(), "value");
}

TEST(MetadataKey, AnEmptyValueIsAValue) {
    EXPECT_EQ(QRXMetadataKey("id", "Title", "").keyIdentifier(), "id");
}

TEST(MetadataKey, FieldsAreSetOneByOne) {
    QRXMetadataKey key;
    key.setKeyIdentifier("id");
    key.setKeyDescription("Title");
    key.setKeyValue("value");
    EXPECT_EQ(key.keyIdentifier(), "id");
    EXPECT_EQ(key.keyDescription(), "Title");
    EXPECT_EQ(key.keyValue(), "value");
    key.setKeyValue(std::nullopt);
    EXPECT_EQ(key.keyValue(), std::nullopt);
    EXPECT_EQ(key.keyIdentifier(), "id");
}

TEST(MetadataKey, ACopyIsAKeyOfItsOwn) {
    QRXMetadataKey key("id", "Title", "value");
    QRXMetadataKey copy(key);
    key.setKeyValue("changed");
    EXPECT_EQ(copy.keyValue(), "value");
    copy = key;
    EXPECT_EQ(copy.keyValue(), "changed");
    const QRXMetadataKey& itself = copy;
    copy = itself;
    EXPECT_EQ(copy.keyIdentifier(), "id");
}

TEST(MetadataKey, FieldsAreReadAndWrittenAsAWhole) {
    constexpr int kPasses = 2000;
    const std::string a(100, 'a');
    const std::string b(100, 'b');
    QRXMetadataKey key("id", "Title", a);
    std::thread writer([&] {
        for (int pass = 0; pass < kPasses; ++pass)
            key.setKeyValue(pass % 2 == 0 ? b : a);
    });
    for (int pass = 0; pass < kPasses; ++pass) {
        const auto value = key.keyValue();
        ASSERT_TRUE(value == a || value == b);
    }
    writer.join();
}

class MetadataKeyLog : public testing::Test {
protected:
    MetadataKeyLog() { services_->systemLog = log_; }

    platform::ScopedServices services_;
    std::shared_ptr<platform::RecordingSystemLog> log_ =
        std::make_shared<platform::RecordingSystemLog>();
};

TEST_F(MetadataKeyLog, HasOneEntryPerKey) {
    QRXMetadataKey("id", "Title", "value").printKeyToLog();
    EXPECT_EQ(
        log_->notices(),
        (std::vector<std::string>{"Key Description:Title\nKey Value:value\nKey Identifier:id"}));
}

TEST_F(MetadataKeyLog, ShowsAbsentFieldsAsNull) {
    QRXMetadataKey(std::nullopt, std::nullopt, std::nullopt).printKeyToLog();
    EXPECT_EQ(
        log_->notices(),
        (std::vector<std::string>{"Key Description:(null)\nKey Value:(null)\nKey Identifier:"}));
}

}  // namespace
}  // namespace qrx
