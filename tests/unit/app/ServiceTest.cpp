// The controller as a service: what it serves, and how it begins.

#include <algorithm>
#include <array>
#include <chrono>
#include <set>
#include <string>
#include <utility>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "app/ClipStream.h"
#include "app/Composition.h"
#include "app/QRXHDFileMatcherController.h"
#include "app/QRXHDFileMatcherProxy.h"
#include "platform/fake/FakeProcessRunner.h"
#include "platform/fake/FakeServiceBus.h"
#include "platform/ports/Services.h"
#include "support/InterfaceXml.h"
#include "support/TemporaryFolder.h"

namespace qrx {
namespace {

using platform::BusBytes;
using platform::BusCall;
using platform::BusError;
using platform::BusValue;
using platform::BusValues;
using Dictionary = BusValue::Dictionary;
using List = BusValue::List;

constexpr const char* kAsk = "filePathDictionariesForAllHDFilesAtFileSystemLocations";

/// Keeps the work of new threads instead of starting them.
class Controller : public QRXHDFileMatcherController {
public:
    using QRXHDFileMatcherController::exportedMethods;
    using QRXHDFileMatcherController::interfaceDescriptions;

    std::vector<std::function<void()>> detached;

protected:
    void detachNewThread(std::function<void()> work) override {
        detached.push_back(std::move(work));
    }
};

class ServiceTest : public testing::Test {
protected:
    ServiceTest() {
        services->processRunner = std::make_shared<platform::FakeProcessRunner>();
        services->serviceBus = bus;
        services->ffmpegPath = "/nowhere/ffmpeg";
        services->arguments = {"program", "Cards"};
    }

    [[nodiscard]] BusValues ask(const char* interfaceName, const char* member, BusValues arguments,
                                std::stop_token callerGone = {}) {
        ExportedObject root(controller.interfaceDescriptions(), controller.exportedMethods());
        return root
            .answer({.sender = ":1.7",
                     .interfaceName = interfaceName,
                     .member = member,
                     .arguments = std::move(arguments),
                     .callerGone = std::move(callerGone)})
            .results;
    }

    platform::ScopedServices services;
    const std::shared_ptr<platform::FakeServiceBus> bus =
        std::make_shared<platform::FakeServiceBus>();
    Controller controller;
    const test::CardTree card{"AVCHD/BDMV/STREAM/00000.MTS", "AVCHD/BDMV/STREAM/00001.MTS",
                              "notes.txt"};
    const std::string first = card / "AVCHD/BDMV/STREAM/00000.MTS";
    const std::string second = card / "AVCHD/BDMV/STREAM/00001.MTS";
};

TEST_F(ServiceTest, DescriptionsNameWhatIsAnsweredAndNothingElse) {
    std::vector<std::string> described;
    for (const std::string_view xml : controller.interfaceDescriptions()) {
        const auto members = test::describedMethods(xml);
        described.insert(described.end(), members.begin(), members.end());
    }
    std::vector<std::string> answered;
    std::set<std::string_view> members;
    for (const BusMethod& method : controller.exportedMethods()) {
        answered.push_back(std::string(method.interfaceName) + "." + std::string(method.member));
        EXPECT_TRUE(members.insert(method.member).second) << method.member << " occurs twice";
    }
    std::sort(described.begin(), described.end());
    std::sort(answered.begin(), answered.end());
    EXPECT_EQ(described, answered);
    EXPECT_EQ(answered.size(), 14U);
}

TEST_F(ServiceTest, WakingWatchesTheHostAndServesTheFirstArgument) {
    controller.setAccessed(true);
    controller.awakeFromNib();
    EXPECT_EQ(controller.detached.size(), 1U);
    EXPECT_TRUE(controller.vended());
    EXPECT_EQ(controller.connectionName(), "Cards");
    EXPECT_TRUE(controller.accessed());  // unlike the base, it leaves the fields as they are
    ASSERT_NE(bus->rootObject("Cards"), nullptr);
    EXPECT_NE(bus->rootObject("Cards")->wayOutOfLargeAnswers().find(
                  kQRXHDFileMatcherStream.interfaceName),
              std::string_view::npos);
}

TEST_F(ServiceTest, ClipsTravelAsDictionaries) {
    const auto answer =
        ask("com.quillfen.QRXHDFileMatcherProtocol", kAsk, {List{card.path(), card / "missing"}});
    const auto clip = [](const std::string& path) {
        return Dictionary{{"filePath", path}, {"volumeTitle", "Sony NXCAM AVCHD"}, {"qt", false}};
    };
    EXPECT_EQ(answer, BusValues{BusValue(List{clip(first), clip(second)})});
}

TEST_F(ServiceTest, RequestOfACallerThatHasGoneIsNotCarriedOut) {
    std::stop_source gone;
    gone.request_stop();
    EXPECT_EQ(
        ask("com.quillfen.QRXHDFileMatcherProtocol", kAsk, {List{card.path()}}, gone.get_token()),
        BusValues{BusValue(List{})});
}

TEST_F(ServiceTest, CancelledRunTellsWhatItHasFound) {
    const std::atomic<bool> cancelled = true;
    EXPECT_TRUE(
        controller.filePathDictionariesForAllHDFilesAtFileSystemLocations({card.path()}, &cancelled)
            .empty());
    EXPECT_EQ(
        controller.filePathDictionariesForAllHDFilesAtFileSystemLocations({card.path()}, nullptr)
            .size(),
        2U);
}

TEST_F(ServiceTest, SelfTestAsksAboutOneFixedFolderAndDropsTheAnswer) {
    class Recording : public Controller {
    public:
        using Controller::filePathDictionariesForAllHDFilesAtFileSystemLocations;
        [[nodiscard]] std::vector<PathDictionary>
        filePathDictionariesForAllHDFilesAtFileSystemLocations(
            const FilePaths& locations) const override {
            asked.push_back(locations);
            return Controller::filePathDictionariesForAllHDFilesAtFileSystemLocations(
                {answered.path()});
        }
        mutable std::vector<FilePaths> asked;
        const test::CardTree answered{"AVCHD/BDMV/STREAM/00000.MTS"};
    } recording;
    recording.autoTest();
    recording.autoTest();
    ASSERT_EQ(recording.asked.size(), 2U);
    EXPECT_EQ(recording.asked[0].size(), 1U);
    EXPECT_EQ(recording.asked[0], recording.asked[1]);
}

TEST_F(ServiceTest, ProxyAsksBothProtocols) {
    controller.awakeFromNib();
    QRXHDFileMatcherProxy proxy(QRXDistributedProxy(bus->rootProxy("Cards").value()));
    EXPECT_EQ(proxy.filePathDictionariesForAllHDFilesAtFileSystemLocations({card.path()}),
              controller.filePathDictionariesForAllHDFilesAtFileSystemLocations({card.path()}));
    EXPECT_FALSE(proxy.filePathIsQuickTime(first));
    EXPECT_FALSE(proxy.communicationLocked());
    EXPECT_EQ(proxy.distributedProcessIdentifier(), controller.distributedProcessIdentifier());
    bus->vanish("Cards");
    EXPECT_THROW(static_cast<void>(proxy.filePathIsQuickTime(first)), BusError);
}

TEST(FileMatcherProtocol, MethodsAreOptional) {
    class Nothing : public QRXHDFileMatcherProtocol {};
    EXPECT_TRUE(Nothing().filePathDictionariesForAllHDFilesAtFileSystemLocations({"/"}).empty());
    EXPECT_FALSE(Nothing().filePathIsQuickTime("/x.mov"));
}

// The stream.

class ClipStreamTest : public ServiceTest {
protected:
    ClipStreamTest() {
        EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
        descriptor = platform::BusDescriptor(new int(ends[1]), [](const int* held) {
            ::close(*held);
            delete held;
        });
    }
    ~ClipStreamTest() override { ::close(ends[0]); }

    [[nodiscard]] BusCall request(const FilePaths& locations, Dictionary options = {}) {
        List list;
        for (const FilePath& one : locations)
            list.emplace_back(BusBytes{one});
        BusCall call;
        call.sender = ":1.7";
        call.arguments = {std::move(list), std::move(options), std::exchange(descriptor, nullptr)};
        return call;
    }
    /// What was written, once nobody can write any more.
    [[nodiscard]] std::string written() const {
        std::string text;
        char byte = 0;
        while (::read(ends[0], &byte, 1) == 1)
            text += byte;
        return text;
    }

    std::array<int, 2> ends{};
    platform::BusDescriptor descriptor;
};

std::string errorName(const BusCall& call) {
    try {
        static_cast<void>(streamFilePathDictionaries(call, std::chrono::milliseconds{50}));
    } catch (const BusError& error) {
        return error.name();
    }
    return "";
}

TEST_F(ClipStreamTest, WritesALineForEachClip) {
    BusCall call = request({card.path(), card / "missing", first});
    EXPECT_EQ(streamFilePathDictionaries(call).results,
              (BusValues{std::uint64_t{4}, std::uint64_t{3}}));
    call.arguments.clear();
    const auto line = [](const std::string& path) {
        return R"({"filePath":")" + path + R"(","volumeTitle":"Sony NXCAM AVCHD","qt":false})" +
               "\n";
    };
    EXPECT_EQ(written(), line(first) + line(second) + line(first));
}

TEST_F(ClipStreamTest, TellsProgressToTheCallerAlone) {
    BusCall call = request(
        {card.path()},
        {{"id", std::uint32_t{5}}, {"progressInterval", std::uint32_t{0}}, {"unknown", "option"}});
    static_cast<void>(streamFilePathDictionaries(call));
    ASSERT_EQ(bus->signals.size(), 3U);
    EXPECT_EQ(bus->signals[0].receiver, ":1.7");
    EXPECT_EQ(bus->signals[0].message.member, "Progress");
    EXPECT_EQ(bus->signals[0].message.signature, "ttu");
    EXPECT_EQ(bus->signals[2].message.arguments,
              (BusValues{std::uint64_t{2}, std::uint64_t{2}, std::uint32_t{5}}));
}

TEST_F(ClipStreamTest, TellsProgressNotTooOften) {
    BusCall call = request({card.path()}, {{"progressInterval", std::uint32_t{3'600'000}}});
    static_cast<void>(streamFilePathDictionaries(call));
    EXPECT_EQ(bus->signals.size(), 1U);
}

TEST_F(ClipStreamTest, NoLocationsEndAtOnce) {
    BusCall call = request({});
    EXPECT_EQ(streamFilePathDictionaries(call).results,
              (BusValues{std::uint64_t{0}, std::uint64_t{0}}));
}

TEST_F(ClipStreamTest, OptionOfAnotherTypeIsRefused) {
    EXPECT_EQ(errorName(request({first}, {{"id", "five"}})), platform::kInvalidArguments);
}

TEST_F(ClipStreamTest, ReaderThatTakesNothingEndsTheRequest) {
    const FilePaths many(2000, first);
    EXPECT_EQ(errorName(request(many)), "com.quillfen.Error.ReaderStalled");
}

TEST_F(ClipStreamTest, CallerThatHasGoneEndsTheRequest) {
    std::stop_source gone;
    gone.request_stop();
    BusCall call = request({first});
    call.callerGone = gone.get_token();
    EXPECT_EQ(errorName(call), "com.quillfen.Error.Cancelled");
}

}  // namespace
}  // namespace qrx
