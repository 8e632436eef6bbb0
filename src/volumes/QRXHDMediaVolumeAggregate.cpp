#include "volumes/QRXHDMediaVolumeAggregate.h"

#include <algorithm>
#include <span>
#include <typeinfo>

#include "foundation/FileQuestions.h"
#include "foundation/SharedInstance.h"
#include "volumes/Precedence.h"

namespace qrx {

namespace {

QRXHDMediaVolumeAggregate::SharedUtilities sharedOf(std::span<const VolumeUtilityClass> classes) {
    QRXHDMediaVolumeAggregate::SharedUtilities utilities;
    utilities.reserve(classes.size());
    for (const VolumeUtilityClass& each : classes) {
        utilities.push_back(&each.shared());
    }
    return utilities;
}

QRXHDMediaVolumeAggregate::UtilityClasses listOf(std::span<const VolumeUtilityClass> classes) {
    return {classes.begin(), classes.end()};
}

bool isWanted(const QRXHDMediaVolumeUtilityObject& utility,
              const QRXHDMediaVolumeAggregate::Constraint& constraint) {
    if (!constraint) return true;
    return std::any_of(constraint->begin(), constraint->end(), [&](const auto* wanted) {
        return wanted != nullptr && typeid(*wanted) == typeid(utility);
    });
}

}  // namespace

QRXHDMediaVolumeAggregate& QRXHDMediaVolumeAggregate::sharedInstance() {
    return sharedInstanceOf<QRXHDMediaVolumeAggregate>();
}

QRXHDMediaVolumeAggregate::SharedUtilities
QRXHDMediaVolumeAggregate::hdUtilitiesOrderedByPrecedent() {
    return sharedOf(classesByPrecedence());
}

QRXHDMediaVolumeAggregate::UtilityClasses
QRXHDMediaVolumeAggregate::hdUtilityClassesOrderedByPrecedent() {
    return listOf(classesByPrecedence());
}

QRXHDMediaVolumeAggregate::SharedUtilities QRXHDMediaVolumeAggregate::allDefinedHDUtilities() {
    return sharedOf(allDefinedClasses());
}

QRXHDMediaVolumeAggregate::UtilityClasses QRXHDMediaVolumeAggregate::allDefinedHDUtilityClasses() {
    return listOf(allDefinedClasses());
}

QRXHDMediaVolumeAggregate::SharedUtilities QRXHDMediaVolumeAggregate::nativeQuickTimeUtilities() {
    return sharedOf(nativeQuickTimeClasses());
}

QRXHDMediaVolumeAggregate::SharedUtilities QRXHDMediaVolumeAggregate::navtiveFFmpegUtilities() {
    return sharedOf(nativeFFmpegClasses());
}

QRXHDMediaVolumeAggregate::NewUtilities QRXHDMediaVolumeAggregate::hdUtilitiesForClasses(
    const UtilityClasses& classes) {
    NewUtilities utilities;
    utilities.reserve(classes.size());
    for (const VolumeUtilityClass& each : classes) {
        utilities.push_back(each.make());
    }
    return utilities;
}

QRXHDMediaVolumeUtilityObject& QRXHDMediaVolumeAggregate::utilityForFileAtPath(
    const FilePath& file) const {
    ExaminedPath path(file);
    for (const VolumeUtilityClass& each : classesByPrecedence()) {
        QRXHDMediaVolumeUtilityObject& utility = each.shared();
        if (utility.examinedPathMatches(path)) return utility;
    }
    return QRXHDMediaVolumeUtilityObject::sharedInstance();
}

QRXHDMediaVolumeUtilityObject* QRXHDMediaVolumeAggregate::utilityWithTitle(
    std::string_view title) const {
    for (const VolumeUtilityClass& each : allDefinedClasses()) {
        QRXHDMediaVolumeUtilityObject& utility = each.shared();
        if (utility.volumeTitle() == title) return &utility;
    }
    return nullptr;
}

std::unique_ptr<QRXHDMediaVolumeUtilityObject> QRXHDMediaVolumeAggregate::utilityForVolumeType(
    std::uint64_t volumeType) const {
    for (const VolumeUtilityClass& each : allDefinedClasses()) {
        if (each.shared().volumeType() == volumeType) return each.make();
    }
    return QRXHDMediaVolumeUtilityObject::volumeUtility();
}

bool QRXHDMediaVolumeAggregate::utilityIsNativeQT(
    const QRXHDMediaVolumeUtilityObject& utility) const {
    const auto native = nativeQuickTimeClasses();
    return std::any_of(native.begin(), native.end(),
                       [&](const VolumeUtilityClass& each) { return each.isKindOf(utility); });
}

std::vector<VolumeDictionary>
QRXHDMediaVolumeAggregate::hdVolumeDictionariesForListOfFileSystemPaths(
    const FilePaths& paths, const Constraint& constrainResultsToThoseMatchingUtilities) const {
    const std::string noVolume = QRXHDMediaVolumeUtilityObject::sharedInstance().volumeTitle();
    std::vector<VolumeDictionary> claimed;
    for (const FilePath& path : paths) {
        if (!fileExists(path)) continue;
        const QRXHDMediaVolumeUtilityObject& utility = utilityForFileAtPath(path);
        std::string title = utility.volumeTitle();
        if (title == noVolume) continue;
        if (!isWanted(utility, constrainResultsToThoseMatchingUtilities)) continue;
        claimed.push_back({path, std::move(title)});
    }
    return claimed;
}

FilePaths QRXHDMediaVolumeAggregate::hdFilePathsInListOfFileSystemPaths(
    const FilePaths& paths, const Constraint& constrainResultsToThoseMatchingUtilities) const {
    FilePaths files;
    for (VolumeDictionary& each : hdVolumeDictionariesForListOfFileSystemPaths(
             paths, constrainResultsToThoseMatchingUtilities)) {
        files.push_back(std::move(each.filePath));
    }
    return files;
}

FilePaths QRXHDMediaVolumeAggregate::hdFilePathsInListOfFileSystemPaths(
    const FilePaths& paths) const {
    return hdFilePathsInListOfFileSystemPaths(paths, std::nullopt);
}

}  // namespace qrx
