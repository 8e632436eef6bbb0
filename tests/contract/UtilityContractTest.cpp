// What every volume utility keeps to, whatever its format: one suite, run on each class.

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "foundation/FileQuestions.h"
#include "platform/fake/FakeMountTable.h"
#include "support/ReportingTool.h"
#include "support/TemporaryFolder.h"
#include "volumes/QRXAVCHDUtility.h"
#include "volumes/QRXCanonAVCHDUtility.h"
#include "volumes/QRXCanonEOSUtility.h"
#include "volumes/QRXCanonXFUtility.h"
#include "volumes/QRXGoProUtility.h"
#include "volumes/QRXHDFFmpegUtility.h"
#include "volumes/QRXHDMediaVolumeUtilityObject.h"
#include "volumes/QRXJVCMP4Utility.h"
#include "volumes/QRXJVCQTUtility.h"
#include "volumes/QRXMXFUtility.h"
#include "volumes/QRXPanasonicAVCHDUtility.h"
#include "volumes/QRXPanasonicP2Utility.h"
#include "volumes/QRXQTUtility.h"
#include "volumes/QRXREDOneUtility.h"
#include "volumes/QRXSonyAVCHDUtility.h"
#include "volumes/QRXSonyXDCAMExUtility.h"
#include "volumes/QRXSonyXDCAMHDUtility.h"
#include "volumes/QRXXDCAMUtility.h"

namespace qrx {
namespace {

using Base = QRXHDMediaVolumeUtilityObject;

enum class Factory { volumeUtility, utility };

/// One row of the identity table, and what the class offers under the two factory names.
struct Identity {
    std::string_view name;
    std::uint64_t volumeType;
    std::string_view volumeTitle;
    Factory factory;
    Base& (*shared)();
    std::unique_ptr<Base> (*make)();           ///< through the stated factory
    std::unique_ptr<Base> (*volumeUtility)();  ///< through the name `volumeUtility`
    bool (*isOfTheClass)(const Base&);
    bool derivesAsStated;
    bool isDefined;  ///< stands in the aggregate's lists
};

void PrintTo(const Identity& identity, std::ostream* out) {
    *out << identity.name;
}

template <class Utility, class Parent, Factory kFactory>
constexpr Identity identity(std::string_view name, std::uint64_t type, std::string_view title,
                            bool isDefined = true) {
    return {
        .name = name,
        .volumeType = type,
        .volumeTitle = title,
        .factory = kFactory,
        .shared = []() -> Base& { return Utility::sharedInstance(); },
        .make = []() -> std::unique_ptr<Base> {
            if constexpr (kFactory == Factory::utility) {
                return Utility::utility();
            } else {
                return Utility::volumeUtility();
            }
        },
        .volumeUtility = []() -> std::unique_ptr<Base> { return Utility::volumeUtility(); },
        .isOfTheClass = [](const Base& object) { return typeid(object) == typeid(Utility); },
        .derivesAsStated = std::is_base_of_v<Parent, Utility>,
        .isDefined = isDefined,
    };
}

bool isPlainBase(const Base& utility) {
    return typeid(utility) == typeid(Base);
}

constexpr auto kVolumeUtility = Factory::volumeUtility;
constexpr auto kUtility = Factory::utility;

const Identity kIdentities[] = {
    identity<QRXPanasonicP2Utility, QRXMXFUtility, kUtility>("QRXPanasonicP2Utility", 0,
                                                             "Panasonic P2"),
    identity<QRXPanasonicAVCHDUtility, QRXAVCHDUtility, kUtility>("QRXPanasonicAVCHDUtility", 1,
                                                                  "Panasonic AVCHD"),
    identity<QRXREDOneUtility, QRXQTUtility, kVolumeUtility>("QRXREDOneUtility", 2, "RED One"),
    identity<QRXSonyXDCAMExUtility, QRXXDCAMUtility, kVolumeUtility>("QRXSonyXDCAMExUtility", 3,
                                                                     "Sony XDCAM EX"),
    identity<QRXSonyXDCAMHDUtility, QRXXDCAMUtility, kUtility>("QRXSonyXDCAMHDUtility", 4,
                                                               "Sony XDCAM HD"),
    identity<QRXSonyAVCHDUtility, QRXAVCHDUtility, kUtility>("QRXSonyAVCHDUtility", 5,
                                                             "Sony NXCAM AVCHD"),
    identity<QRXJVCMP4Utility, QRXXDCAMUtility, kVolumeUtility>("QRXJVCMP4Utility", 6, "JVC-MP4"),
    identity<QRXJVCQTUtility, QRXQTUtility, kVolumeUtility>("QRXJVCQTUtility", 7, "JVC-QuickTime"),
    identity<QRXCanonEOSUtility, QRXQTUtility, kVolumeUtility>("QRXCanonEOSUtility", 8,
                                                               "Canon EOS"),
    identity<QRXCanonAVCHDUtility, QRXAVCHDUtility, kUtility>("QRXCanonAVCHDUtility", 9,
                                                              "Canon AVCHD"),
    identity<QRXCanonXFUtility, QRXMXFUtility, kUtility>("QRXCanonXFUtility", 10, "Canon XF"),
    identity<QRXQTUtility, Base, kVolumeUtility>("QRXQTUtility", 11, "Apple QuickTime"),
    identity<QRXGoProUtility, QRXQTUtility, kVolumeUtility>("QRXGoProUtility", 12, "GoPro"),
    identity<QRXHDFFmpegUtility, Base, kVolumeUtility>("QRXHDFFmpegUtility", 13, "General Movies"),
    identity<QRXMXFUtility, Base, kUtility>("QRXMXFUtility", 14, "MXF"),
    identity<QRXAVCHDUtility, Base, kUtility>("QRXAVCHDUtility", 16, "AVCHD", false),
    identity<QRXXDCAMUtility, Base, kUtility>("QRXXDCAMUtility", 16, "XDCAM", false),
    identity<Base, QRXHDMediaObject, kVolumeUtility>("QRXHDMediaVolumeUtilityObject", 16, "Volume",
                                                     false),
};

class UtilityIdentity : public testing::TestWithParam<Identity> {};

const auto nameOfIdentity = [](const auto& row) { return std::string(row.param.name); };

TEST_P(UtilityIdentity, TypeAndTitleAreTheTables) {
    const auto made = GetParam().make();
    for (const Base* utility : {made.get(), &GetParam().shared()}) {
        EXPECT_EQ(utility->volumeType(), GetParam().volumeType);
        EXPECT_EQ(utility->volumeTitle(), GetParam().volumeTitle);
    }
}

TEST_P(UtilityIdentity, DerivesFromItsStatedParent) {
    EXPECT_TRUE(GetParam().derivesAsStated);
}

TEST_P(UtilityIdentity, SharedObjectIsOneOfItsOwnClass) {
    Base& shared = GetParam().shared();
    EXPECT_EQ(&shared, &GetParam().shared());
    EXPECT_TRUE(GetParam().isOfTheClass(shared));
    for (const Identity& other : kIdentities) {
        EXPECT_EQ(&shared == &other.shared(), other.name == GetParam().name) << other.name;
    }
}

TEST_P(UtilityIdentity, FactoryGivesNewObjectsOfItsOwnClass) {
    const auto one = GetParam().make();
    const auto other = GetParam().make();
    EXPECT_TRUE(GetParam().isOfTheClass(*one));
    EXPECT_NE(one.get(), other.get());
    EXPECT_NE(one.get(), &GetParam().shared());
}

TEST_P(UtilityIdentity, KeptVolumeUtilityOfAClassThatOffersUtilityGivesABaseObject) {
    const auto made = GetParam().volumeUtility();
    if (GetParam().factory == Factory::utility) {
        EXPECT_TRUE(isPlainBase(*made));
        EXPECT_EQ(made->volumeType(), 16U);
        EXPECT_EQ(made->volumeTitle(), "Volume");
    } else {
        EXPECT_TRUE(GetParam().isOfTheClass(*made));
    }
}

INSTANTIATE_TEST_SUITE_P(All, UtilityIdentity, testing::ValuesIn(kIdentities), nameOfIdentity);

// ---- odd places

/// A folder with one of each thing that is no ordinary file.
class OddPlaces {
public:
    OddPlaces() {
        folder_.makeFolder("folder.mov");
        folder_.write("empty.mov");
        folder_.write("empty.MTS");
        folder_.write("text.txt", "words\n");
        folder_.link("dangling.mov", "gone");
        folder_.link("loop.mov", "loop.mov");
        if (::mkfifo((folder_ / "fifo.MTS").c_str(), 0600) != 0)
            throw std::system_error(errno, std::generic_category(), "mkfifo");
        makeSocket(folder_ / "socket.mov");
    }

    [[nodiscard]] FilePaths all() const {
        FilePaths paths = missing();
        for (const char* name :
             {"folder.mov", "empty.mov", "empty.MTS", "text.txt", "fifo.MTS", "socket.mov"}) {
            paths.push_back(folder_ / name);
        }
        paths.insert(paths.end(), {"/", "/dev/null", "/dev/zero", folder_.path(),
                                   folder_.path() + "/", folder_.path() + "//empty.mov"});
        return paths;
    }

    /// Nothing exists at any of these.
    [[nodiscard]] FilePaths missing() const {
        using namespace std::string_literals;
        return {
            "",
            " ",
            "relative.mov",
            "relative/AVCHD/BDMV/STREAM/00001.MTS",
            "../x.mov",
            folder_ / "missing.mov",
            folder_ / "missing/x.mov",
            folder_ / "empty.mov/x.mov",
            folder_ / "dangling.mov",
            folder_ / "loop.mov",
            folder_.path() + "/\xFF\xFE.mov",
            folder_.path() + "/nul\0hidden.mov"s,
            "\0"s,
            "/" + std::string(4000, 'a'),
            folder_.path() + longPath(),
            "/x/AVCHD/BDMV/STREAM/\xC3.MTS",
            std::string(4000, '/') + "x",
            "a.b.c.",
            ".",
            "~",
        };
    }

    [[nodiscard]] const test::TemporaryFolder& folder() const { return folder_; }

private:
    static std::string longPath() {
        std::string path;
        while (path.size() < 3900) {
            path += "/CONTENTS";
        }
        return path + "/VIDEO/0001AB.MXF";
    }

    static void makeSocket(const std::string& path) {
        const int descriptor = ::socket(AF_UNIX, SOCK_STREAM, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof(address.sun_path) - 1);
        const auto* const plain = reinterpret_cast<const sockaddr*>(&address);
        const bool made = ::bind(descriptor, plain, sizeof address) == 0;
        ::close(descriptor);
        if (!made) throw std::system_error(errno, std::generic_category(), "bind " + path);
    }

    test::TemporaryFolder folder_;
};

class UtilityContract : public testing::TestWithParam<Identity> {
protected:
    UtilityContract() { services_->mountTable = std::make_shared<platform::FakeMountTable>(); }

    [[nodiscard]] const Base& utility() const { return GetParam().shared(); }

    platform::ScopedServices services_;
    test::ReportingTool tool_{"x: Invalid data found when processing input\n"};
    OddPlaces places_;
};

TEST_P(UtilityContract, NoQuestionAboutAFileThrowsOrHangs) {
    const test::TemporaryFolder pictures;
    for (const FilePath& path : places_.all()) {
        SCOPED_TRACE(path.substr(0, 80));
        EXPECT_NO_THROW({
            static_cast<void>(utility().filePathMatchesVolumeStructure(path));
            static_cast<void>(utility().framerateForVideoFile(path));
            static_cast<void>(utility().uniqueIdentifierForVideoFile(path));
            static_cast<void>(utility().metadataWrapperForVideoFilePath(path));
            static_cast<void>(utility().audioFilesForVideoFile(path));
            static_cast<void>(utility().metadataFilePathForVideoFile(path));
            static_cast<void>(utility().startTimecodeForVideoFile(path));
            static_cast<void>(utility().endTimecodeForVideoFile(path));
            static_cast<void>(utility().videoFileIsDropFrame(path));
            static_cast<void>(utility().fileIsInASpannedSeries(path));
            static_cast<void>(utility().spanPartnerIdentifierForPath(path));
            static_cast<void>(utility().volumePartnerIdentifierForFilePath(path));
            static_cast<void>(utility().filePathExtensionIsValid(path));
            static_cast<void>(utility().sourceFilePathForReferenceFile(path));
            static_cast<void>(utility().defaultVolumeParentDirectoryForFileSystemPath(path));
            static_cast<void>(utility().posterImageForFilePath(path, pictures.path()));
        });
    }
}

TEST_P(UtilityContract, NoQuestionAboutADriveThrowsHangsOrMatches) {
    for (const FilePath& path : places_.missing()) {
        SCOPED_TRACE(path.substr(0, 80));
        EXPECT_NO_THROW({
            EXPECT_FALSE(utility().drivePathMatchesVolumeStructure(path));
            EXPECT_FALSE(utility().pathContainsVideoFilesMatchingVolumeStructure(path));
            EXPECT_FALSE(utility().reformatDrivePath(path));
        });
    }
    for (const char* name : {"fifo.MTS", "socket.mov", "empty.mov", "folder.mov"}) {
        EXPECT_FALSE(utility().drivePathMatchesVolumeStructure(places_.folder() / name)) << name;
        EXPECT_FALSE(
            utility().pathContainsVideoFilesMatchingVolumeStructure(places_.folder() / name))
            << name;
    }
}

TEST_P(UtilityContract, NoQuestionAboutAListThrows) {
    const FilePaths lists[] = {{}, {""}, places_.missing(), places_.all()};
    for (const FilePaths& files : lists) {
        EXPECT_NO_THROW({
            static_cast<void>(utility().sortSpannedClipSeries(files));
            static_cast<void>(utility().filesArePartOfTheSameSpanSeries(files));
            static_cast<void>(utility().orderVolumeVideoFiles(files));
            static_cast<void>(utility().filePathsAreVolumeSiblings(files));
        });
    }
    EXPECT_FALSE(utility().filePathsAreVolumeSiblings({}));
    EXPECT_FALSE(utility().filesArePartOfTheSameSpanSeries({}));
}

TEST_P(UtilityContract, OrderingKeepsTheElements) {
    FilePaths files{"/x/A001_03.MOV", "/x/A001_01.MOV",     "/x/0002AB.MXF",      "/x/0001AB.MXF",
                    "/x/clip",        "/x/708_0001_02.MP4", "/x/708_0001_01.MP4", "/x/clip"};
    FilePaths ordered = utility().orderVolumeVideoFiles(files);
    std::sort(files.begin(), files.end());
    std::sort(ordered.begin(), ordered.end());
    EXPECT_EQ(ordered, files);
}

TEST_P(UtilityContract, SortingASpannedSeriesKeepsTheElements) {
    FilePaths files{"/x/A001_03.MOV", "/x/A001_01.MOV", "/x/A001_02.MOV", "/x/A001_01.MOV"};
    FilePaths sorted = utility().sortSpannedClipSeries(files);
    std::sort(files.begin(), files.end());
    std::sort(sorted.begin(), sorted.end());
    EXPECT_EQ(sorted, files);
    EXPECT_TRUE(utility().sortSpannedClipSeries({}).empty());
}

TEST_P(UtilityContract, MissingFileGetsTheNeutralAnswers) {
    const FilePath missing = places_.folder() / "missing.clip";
    EXPECT_FALSE(utility().filePathMatchesVolumeStructure(missing));
    EXPECT_FALSE(utility().metadataFilePathForVideoFile(missing));
    EXPECT_FALSE(utility().endTimecodeForVideoFile(missing));
    EXPECT_EQ(utility().startTimecodeForVideoFile(missing), "00:00:00:00");
    EXPECT_FALSE(utility().fileIsInASpannedSeries(missing));
    EXPECT_TRUE(utility().posterImageForFilePath(missing, places_.folder().path()).isEmpty());
}

TEST_P(UtilityContract, ChecksAndAnswerOfThePathTestAgree) {
    FilePaths paths = places_.all();
    paths.insert(paths.end(),
                 {"/x/AVCHD/BDMV/STREAM/00001.MTS", "/x/PRIVATE/AVCHD/BDMV/STREAM/1.MTS",
                  "/x/CONTENTS/VIDEO/0001AB.MXF", "/x/DCIM/100/A_01.MOV"});
    for (const FilePath& file : paths) {
        SCOPED_TRACE(file.substr(0, 80));
        ExaminedPath path(file);
        const StructureFinding found = utility().findStructure(path);
        EXPECT_EQ(found.claimed, utility().filePathMatchesVolumeStructure(file));
        EXPECT_EQ(found.claimed, utility().examinedPathMatches(path));
        if (!found.claimed && !utility().structureChecks().empty()) {
            ASSERT_NE(found.decisive, nullptr);
            EXPECT_FALSE(found.decisive->phrase.empty());
        }
    }
}

TEST_P(UtilityContract, PhrasesOfTheChecksAreDistinctAndNoSentences) {
    std::vector<std::string_view> phrases;
    for (const StructureCheck& check : utility().structureChecks()) {
        EXPECT_FALSE(check.phrase.empty());
        EXPECT_FALSE(check.phrase.ends_with('.')) << check.phrase;
        phrases.push_back(check.phrase);
    }
    std::sort(phrases.begin(), phrases.end());
    EXPECT_EQ(std::adjacent_find(phrases.begin(), phrases.end()), phrases.end());
}

TEST_P(UtilityContract, FormattingWhatIsNoDriveTouchesNothing) {
    const test::CardTree card{"folder/file"};
    const FilePath file = card / "folder/file";
    EXPECT_NO_THROW({
        static_cast<void>(utility().formatDriveToMatchValidVolumeStructure(card / "missing"));
        static_cast<void>(utility().formatDriveToMatchValidVolumeStructure(file + "/x"));
        EXPECT_FALSE(utility().reformatDrivePath(card.path()));
    });
    EXPECT_TRUE(fileExists(file));
    EXPECT_FALSE(itemExists(card / "missing"));
}

TEST_P(UtilityContract, NewAndSharedObjectAnswerAlike) {
    const auto made = GetParam().make();
    for (const FilePath& path : places_.all()) {
        SCOPED_TRACE(path.substr(0, 80));
        EXPECT_EQ(made->filePathMatchesVolumeStructure(path),
                  utility().filePathMatchesVolumeStructure(path));
        EXPECT_EQ(made->uniqueIdentifierForVideoFile(path),
                  utility().uniqueIdentifierForVideoFile(path));
        EXPECT_EQ(made->volumePartnerIdentifierForFilePath(path),
                  utility().volumePartnerIdentifierForFilePath(path));
    }
}

TEST_P(UtilityContract, NoQuestionLeavesAnythingBehind) {
    const test::TemporaryFolder pictures;
    const FilePath movie = places_.folder() / "empty.mov";
    static_cast<void>(utility().posterImageForFilePath(movie, pictures.path()));
    static_cast<void>(utility().metadataWrapperForVideoFilePath(movie));
    EXPECT_EQ(::rmdir(pictures.path().c_str()), 0) << "a picture was left behind";
}

INSTANTIATE_TEST_SUITE_P(All, UtilityContract, testing::ValuesIn(kIdentities), nameOfIdentity);

}  // namespace
}  // namespace qrx
