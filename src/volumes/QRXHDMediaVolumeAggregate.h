#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/FilePath.h"
#include "foundation/QRXObject.h"
#include "volumes/QRXHDMediaVolumeUtilityObject.h"
#include "volumes/VolumeUtilityClass.h"

namespace qrx {

/// One claimed file.
struct VolumeDictionary {
    FilePath filePath;        ///< as it was given
    std::string volumeTitle;  ///< of the utility that claims the file

    bool operator==(const VolumeDictionary&) const = default;
};

/// All volume utilities in order, and who of them has a file.
///
/// Holds no state: a new object and the shared one answer alike, from any thread. A utility that
/// is handed out as a pointer or reference is the shared one of its class and lives as long as the
/// process. No operation throws.
class QRXHDMediaVolumeAggregate : public QRXHDMediaObject {
public:
    using SharedUtilities = std::vector<QRXHDMediaVolumeUtilityObject*>;  ///< none is null
    using NewUtilities = std::vector<std::unique_ptr<QRXHDMediaVolumeUtilityObject>>;
    using UtilityClasses = std::vector<VolumeUtilityClass>;
    /// The utilities whose files alone are wanted.
    using Constraint = std::optional<std::vector<const QRXHDMediaVolumeUtilityObject*>>;

    [[nodiscard]] static QRXHDMediaVolumeAggregate hdAggregate() { return {}; }
    [[nodiscard]] static QRXHDMediaVolumeAggregate& sharedInstance();

    /// The order in which a file is offered.
    [[nodiscard]] static SharedUtilities hdUtilitiesOrderedByPrecedent();
    [[nodiscard]] static UtilityClasses hdUtilityClassesOrderedByPrecedent();
    [[nodiscard]] static SharedUtilities allDefinedHDUtilities();
    [[nodiscard]] static UtilityClasses allDefinedHDUtilityClasses();
    /// Those whose clips QuickTime reads without help, and those whose clips the ffmpeg tool does;
    /// together all of them.
    [[nodiscard]] static SharedUtilities nativeQuickTimeUtilities();
    [[nodiscard]] static SharedUtilities navtiveFFmpegUtilities();
    /// A new object of each class, in the order of `classes`.
    [[nodiscard]] static NewUtilities hdUtilitiesForClasses(const UtilityClasses& classes);

    /// The names under which a volume dictionary travels.
    [[nodiscard]] static std::string volumeTitleDictionaryKey() { return "volumeTitle"; }
    [[nodiscard]] static std::string filePathDictionaryKey() { return "filePath"; }

    /// The first utility in order of precedence that claims `file`; the base object when none does.
    /// The path decides alone, unless a utility must open the file: nothing need exist there.
    [[nodiscard]] QRXHDMediaVolumeUtilityObject& utilityForFileAtPath(const FilePath& file) const;
    /// The utility of exactly that title; null when there is none, as for the titles of the base
    /// object and of the generic parents.
    [[nodiscard]] QRXHDMediaVolumeUtilityObject* utilityWithTitle(std::string_view title) const;
    /// A new object of the class of that volume type; a base object when there is none.
    [[nodiscard]] std::unique_ptr<QRXHDMediaVolumeUtilityObject> utilityForVolumeType(
        std::uint64_t volumeType) const;
    /// Whether QuickTime reads the utility's clips without help: its class is one of
    /// nativeQuickTimeUtilities or derived from one.
    [[nodiscard]] bool utilityIsNativeQT(const QRXHDMediaVolumeUtilityObject& utility) const;

    /// The claimed files of the list, in its order. What does not exist is left out, and so are
    /// folders, which are not expanded.
    ///
    /// @param constrainResultsToThoseMatchingUtilities  keep only the files of utilities of exactly
    ///        the class of one of these; the empty list keeps none. Nothing keeps all.
    [[nodiscard]] std::vector<VolumeDictionary> hdVolumeDictionariesForListOfFileSystemPaths(
        const FilePaths& paths, const Constraint& constrainResultsToThoseMatchingUtilities) const;
    /// As above, the paths alone.
    [[nodiscard]] FilePaths hdFilePathsInListOfFileSystemPaths(
        const FilePaths& paths, const Constraint& constrainResultsToThoseMatchingUtilities) const;
    [[nodiscard]] FilePaths hdFilePathsInListOfFileSystemPaths(const FilePaths& paths) const;
};

}  // namespace qrx
