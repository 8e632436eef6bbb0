#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/FileQuestions.h"
#include "foundation/QRXFileSystemUtility.h"
#include "platform/fake/RecordingSystemLog.h"
#include "platform/ports/Services.h"
#include "support/TemporaryFolder.h"

namespace qrx {
namespace {

using test::CardTree;
using test::TemporaryFolder;
using U = QRXFileSystemUtility;

static_assert(std::is_base_of_v<QRXObject, U>);

const U& utility() {
    return U::sharedInstance();
}

TEST(FileSystemUtility, IsSharedOrNew) {
    EXPECT_EQ(&U::sharedInstance(), &U::sharedInstance());
    const U one = U::fileSystemUtility();
    const U other = U::fileSystemUtility();
    EXPECT_NE(&one.fileManager(), &other.fileManager());
    EXPECT_EQ(&one.fileManager(), &one.fileManager());
}

TEST(FileSystemUtility, FileManagerAnswersForTheFileTree) {
    const CardTree card{"B", "a/"};
    const FileManager& files = utility().fileManager();
    EXPECT_TRUE(files.itemExistsAtPath(card / "B"));
    EXPECT_FALSE(files.folderExistsAtPath(card / "B"));
    EXPECT_TRUE(files.folderExistsAtPath(card / "a"));
    EXPECT_EQ(files.contentsOfDirectoryAtPath(card.path()), (std::vector<std::string>{"a", "B"}));
    EXPECT_EQ(files.contentsOfDirectoryAtPath(card / "B"), std::nullopt);
}

TEST(FileSystemUtility, CharacterSetsAreTheStatedOnes) {
    EXPECT_EQ(U::invalidFilePathCharacters(), R"(:'*?[]^{}~$&|<>\;())");
    EXPECT_EQ(U::invalidFileNameCharacters(), R"(:'*?[]^{}~$&|<>\;()/)");
    EXPECT_EQ(U::terminalEscapeCharacters(), R"( !#$%&*()=[]|;'"<>?)");
}

TEST(FileSystemUtility, MakesUniqueNames) {
    const TemporaryFolder folder;
    folder.write("clip.mov");
    EXPECT_EQ(utility().uniqueFileSystemPathForPath(folder / "clip.mov"), folder / "clip-2.mov");
    EXPECT_EQ(utility().directoryPathThatDoesNotYetExistsForPath(folder / "clip.mov"),
              folder / "clip.mov-2");
    EXPECT_EQ(utility().createUniqueDirectoryPathForPath(folder / "a/b"), folder / "a/b");
    EXPECT_TRUE(folderExists(folder / "a/b"));
}

TEST(FileSystemUtility, CleansNames) {
    EXPECT_EQ(utility().removeInvalidPathCharactersFromPath("a:b*c/d"), "abc/d");
    EXPECT_EQ(utility().removeInvalidFileNameCharactersFromFile("/x/My (1)\\.mov"), "/x/My1\\.mov");
    EXPECT_EQ(utility().removeNonNumericsFromString("29.97 fps", false), "2997");
    EXPECT_EQ(utility().removeNonNumericsFromString("29.97 fps", true), "29.97");
}

TEST(FileSystemUtility, KeptNameWithASlashOrAQuoteIsValid) {
    EXPECT_TRUE(utility().directoryNameIsValid("Clip 1"));
    EXPECT_FALSE(utility().directoryNameIsValid("Clip:1"));
    EXPECT_TRUE(utility().directoryNameIsValid("a/b"));
    EXPECT_TRUE(utility().directoryNameIsValid("a\"b"));
    EXPECT_TRUE(utility().directoryNameIsValid(""));
}

TEST(FileSystemUtility, KeptBothSpellingsEscapeAlike) {
    for (const char* const path : {"", "/", "/Volumes/NO NAME/My (1).mov", "a\\ b", "/tmp"}) {
        EXPECT_EQ(utility().escapeFilePathCharachters(path),
                  utility().escapeFilePathCharacters(path));
    }
    EXPECT_EQ(utility().escapeFilePathCharacters("a\\ b"), "a\\\\ b");
}

TEST(FileSystemUtility, OrdersByNumber) {
    EXPECT_EQ(utility().orderFilePathsByAscendingNumericValue({"2.mov", "10.mov", "1.mov"}),
              (FilePaths{"1.mov", "2.mov", "10.mov"}));
}

TEST(FileSystemUtility, OrdersByDateWhereThereAreNoNumbersToBeHad) {
    const TemporaryFolder folder;
    const FilePath older = folder.write("٣9");
    const platform::ScopedServices services;
    services->textRules.reset();  // the digits of other scripts cannot be told
    EXPECT_EQ(utility().orderFilePathsByAscendingNumericValue({folder / "absent٣1", older}),
              (FilePaths{folder / "absent٣1", older}));
}

TEST(FileSystemUtility, OrdersByDate) {
    const TemporaryFolder folder;
    EXPECT_EQ(utility().orderFilePathsByCreationDate({folder / "b", folder / "a"}),
              (FilePaths{folder / "b", folder / "a"}));
}

TEST(FileSystemUtility, AnswersForOneItem) {
    const TemporaryFolder folder;
    folder.write("A/clip.mov", "12345");
    const FilePath link = folder.link("link", "A/clip.mov");
    EXPECT_TRUE(utility().filePathIsHidden("/x/.y"));
    EXPECT_FALSE(utility().filePathIsHidden("/x/y"));
    EXPECT_TRUE(utility().filePathIsASymbolicLink(link));
    EXPECT_FALSE(utility().filePathIsASymbolicLink(folder / "A"));
    EXPECT_EQ(utility().firstFileMatchingPattern("clip", folder / "A"), folder / "A/clip.mov");
    EXPECT_EQ(utility().firstFileMatchingPattern("x", folder / "A"), std::nullopt);
    EXPECT_TRUE(utility().resolvePath(link).ends_with("/A/clip.mov"));
    EXPECT_EQ(utility().resolvePath(folder / "absent"), folder / "absent");
    EXPECT_FALSE(utility().imageForItemAtPath(link).isEmpty());
    EXPECT_TRUE(utility().imageForItemAtPath(std::nullopt).isEmpty());
}

TEST(FileSystemUtility, MeasuresFilesAndFolders) {
    const TemporaryFolder folder;
    const FilePath a = folder.write("a", "12345");
    const FilePath hidden = folder.write(".b", "67890");
    EXPECT_EQ(utility().sizeOfFileAtPath(a), 5U);
    EXPECT_EQ(utility().sizeOfFileAtPath(folder / "absent"), 0U);
    EXPECT_TRUE(utility().sizeOfFileAtPathEqualsSizeAtPath(a, hidden));
    EXPECT_FALSE(utility().sizeOfFileAtPathEqualsSizeAtPath(a, folder / "absent"));
    EXPECT_EQ(utility().lastBytesinFile(a, 1), (std::vector<std::byte>{std::byte{'5'}}));
    EXPECT_EQ(utility().lastBytesinFile(a, 6), std::nullopt);
    EXPECT_EQ(utility().numberOfFilesAtDirectory(folder.path()), 2U);
    EXPECT_EQ(utility().numberOfBytesAtDirectory(folder.path()), 5);
    EXPECT_EQ(utility().fastFolderSizeAtFSRef(folder.path()), 10U);
    EXPECT_EQ(U::fileSizeDescriptionFromRawSize(1'500'000), "1.50 MB");
    EXPECT_EQ(utility().fileSizeDescriptionFromRawSize(1'500'000), "1.50 MB");
}

TEST(FileSystemUtility, TellsFreeSpaceOfFoldersAlone) {
    const TemporaryFolder folder;
    const FilePath file = folder.write("file");
    EXPECT_GT(utility().freeSpaceAtPath(file), 0U);
    EXPECT_EQ(utility().freeSpaceAtPath(folder / "absent"), 0U);
    EXPECT_TRUE(utility().spaceRemainingAtDirectory(folder.path()));
    EXPECT_EQ(utility().spaceRemainingAtDirectory(file), std::nullopt);
    EXPECT_EQ(utility().spaceRemainingAtDirectory(folder / "absent"), std::nullopt);
}

TEST(FileSystemUtility, ListsSourceFiles) {
    const CardTree card{".DS_Store", "A/clip.mov", ".Trashes/x.mov"};
    EXPECT_EQ(utility().sourceFilesAtDirectory(card.path()), FilePaths{card / "A/clip.mov"});
    EXPECT_EQ(utility().sourceFilesAtDirectory(card.path(), true), FilePaths{card / "A/clip.mov"});
    EXPECT_EQ(utility().sourceFilesAtDirectory(card.path(), false), FilePaths{card / "A"});
    EXPECT_EQ(utility().sourceFilesAtDirectory(card.path(), false, false),
              (FilePaths{card / ".DS_Store", card / ".Trashes", card / "A"}));
    EXPECT_EQ(utility().sourceFilesAtDirectory(card.path(), false, true), FilePaths{card / "A"});
}

TEST(FileSystemUtility, KeptRecursiveSearchIgnoresHiddenFilesInEveryCase) {
    const CardTree card{".DS_Store", "A/clip.mov", ".Trashes/x.mov"};
    EXPECT_EQ(utility().sourceFilesAtDirectory(card.path(), true, false),
              FilePaths{card / "A/clip.mov"});
}

TEST(FileSystemUtility, CountsWhatItLists) {
    const TemporaryFolder folder;
    folder.write("A/clip.mov", "12345");
    std::uint64_t files = 99;
    std::int64_t bytes = 99;
    EXPECT_EQ(utility().sourceFilesAtDirectoryNumberOfFiles(folder.path(), files, bytes),
              FilePaths{folder / "A/clip.mov"});
    EXPECT_EQ(files, 1U);
    EXPECT_EQ(bytes, 5);
    EXPECT_EQ(utility().sourceFilesAtDirectoryCountDirectories(folder.path(), true, files, bytes),
              (FilePaths{folder / "A", folder / "A/clip.mov"}));
    EXPECT_EQ(files, 1U);
    EXPECT_EQ(bytes, 5);
    EXPECT_EQ(utility().sourceFilesAtDirectoryNumberOfFiles(folder / "absent", files, bytes),
              FilePaths{});
    EXPECT_EQ(files, 0U);
    EXPECT_EQ(bytes, 0);
}

TEST(FileSystemUtility, SplitsFilesFromFolders) {
    const CardTree card{"b", "A/", ".c", ".D/"};
    EXPECT_EQ(utility().fullFileSystemPathsForContentsOfDirectoryAtPath(card.path(), true),
              (FilePaths{card / "b", card / "A"}));
    EXPECT_EQ(utility().fullFileSystemPathsForContentsOfDirectoryAtPath(card.path(), false),
              (FilePaths{card / ".c", card / "b", card / ".D", card / "A"}));
    FilePaths files{"before"};
    FilePaths folders{"before"};
    utility().uncoverFileSystemPathsForContentsOfDirectoryAtPath(card.path(), true, files, folders);
    utility().uncoverFileSystemPathsForContentsOfDirectoryAtPath(card / "b", true, files, folders);
    EXPECT_EQ(files, (FilePaths{"before", card / "b"}));
    EXPECT_EQ(folders, (FilePaths{"before", card / "A"}));
    EXPECT_EQ(utility().subDirectoriesAtDirectory(card.path()), FilePaths{card / "A"});
}

TEST(FileSystemUtility, TestsForALayout) {
    const CardTree card{"BPAV/CLPR/a.mp4"};
    const auto holds = [&](const char* subPath, bool isSuffix,
                           const std::optional<std::string>& extension) {
        return utility().directoryPathHasFilesContainingSubPath(card.path(), subPath, isSuffix,
                                                                extension);
    };
    EXPECT_TRUE(holds("/BPAV/CLPR", false, std::nullopt));
    EXPECT_TRUE(holds("/BPAV/CLPR", true, "MP4"));
    EXPECT_FALSE(holds("/BPAV", true, "MP4"));
    EXPECT_FALSE(holds("/BPAV/CLP", true, std::nullopt));
}

TEST(FileSystemUtility, Removes) {
    const CardTree card{"A/a", "CONTENTS/b", "c"};
    utility().removeDirectoriesAtPath(card.path());
    EXPECT_FALSE(itemExists(card / "A"));
    EXPECT_TRUE(itemExists(card / "CONTENTS/b"));
    EXPECT_TRUE(utility().clearDirectoryContents(card.path()));
    EXPECT_TRUE(folderExists(card / "CONTENTS"));
    EXPECT_FALSE(itemExists(card / "c"));
    EXPECT_TRUE(utility().removeContentsAtPath(card / "CONTENTS"));
    EXPECT_FALSE(utility().removeContentsAtPath(card / "CONTENTS"));
}

TEST(FileSystemUtility, FaultsBecomeTheNeutralAnswerAndALogLine) {
    const CardTree card{"é/É.mov"};
    const auto log = std::make_shared<platform::RecordingSystemLog>();
    const platform::ScopedServices services;
    services->systemLog = log;
    services->textRules.reset();
    EXPECT_FALSE(utility().directoryPathHasFilesContainingSubPath(card.path(), "é", true, "mov"));
    EXPECT_EQ(log->notices().size(), 1U);
    EXPECT_TRUE(log->notices().front().starts_with("directoryPathHasFilesContainingSubPath: "));
}

}  // namespace
}  // namespace qrx
