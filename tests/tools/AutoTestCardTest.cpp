#include <vector>

#include <gtest/gtest.h>

#include "app/QRXHDFileMatcherController.h"
#include "platform/ports/Services.h"
#include "qrx/cards/CardMaker.h"
#include "support/TemporaryFolder.h"

namespace qrx::tool {
namespace {

/// Keeps what the self-test drops.
class RecordingController : public QRXHDFileMatcherController {
public:
    using QRXHDFileMatcherController::filePathDictionariesForAllHDFilesAtFileSystemLocations;
    [[nodiscard]] std::vector<PathDictionary>
    filePathDictionariesForAllHDFilesAtFileSystemLocations(
        const FilePaths& locations) const override {
        answer = QRXHDFileMatcherController::filePathDictionariesForAllHDFilesAtFileSystemLocations(
            locations);
        return answer;
    }
    mutable std::vector<PathDictionary> answer;
};

TEST(AutoTest, LooksThroughTheTestCardOfTheResourceFolder) {
    const test::TemporaryFolder resources;
    const platform::ScopedServices services;
    services->resourceFolder = resources.path();
    NewCard card(resources / "TEST CARD");
    cardMakerFor("sony-avchd")->make(card, MediaTool(), 2);
    card.keep();

    const RecordingController controller;
    controller.autoTest();
    ASSERT_EQ(controller.answer.size(), 2U);
    EXPECT_EQ(controller.answer[0].volumeTitle, "Sony NXCAM AVCHD");
    EXPECT_EQ(controller.answer[0].filePath, resources / "TEST CARD/AVCHD/BDMV/STREAM/00000.MTS");
}

}  // namespace
}  // namespace qrx::tool
