#include <span>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "volumes/Precedence.h"

namespace qrx {
namespace {

using Names = std::vector<std::string>;

Names namesOf(std::span<const VolumeUtilityClass> classes) {
    Names names;
    for (const VolumeUtilityClass& each : classes) {
        names.emplace_back(each.name);
    }
    return names;
}

TEST(Precedence, OrderInWhichAFileIsOffered) {
    EXPECT_EQ(namesOf(classesByPrecedence()),
              (Names{"QRXCanonAVCHDUtility", "QRXSonyAVCHDUtility", "QRXPanasonicAVCHDUtility",
                     "QRXJVCMP4Utility", "QRXSonyXDCAMExUtility", "QRXPanasonicP2Utility",
                     "QRXSonyXDCAMHDUtility", "QRXCanonXFUtility", "QRXJVCQTUtility",
                     "QRXREDOneUtility", "QRXGoProUtility", "QRXCanonEOSUtility", "QRXMXFUtility",
                     "QRXHDFFmpegUtility", "QRXQTUtility"}));
}

TEST(Precedence, OrderOfAllDefined) {
    EXPECT_EQ(namesOf(allDefinedClasses()),
              (Names{"QRXPanasonicP2Utility", "QRXPanasonicAVCHDUtility", "QRXSonyXDCAMExUtility",
                     "QRXSonyXDCAMHDUtility", "QRXSonyAVCHDUtility", "QRXREDOneUtility",
                     "QRXJVCQTUtility", "QRXJVCMP4Utility", "QRXGoProUtility",
                     "QRXCanonAVCHDUtility", "QRXCanonEOSUtility", "QRXCanonXFUtility",
                     "QRXMXFUtility", "QRXHDFFmpegUtility", "QRXQTUtility"}));
}

TEST(Precedence, OrderOfNativeQuickTime) {
    EXPECT_EQ(namesOf(nativeQuickTimeClasses()),
              (Names{"QRXPanasonicP2Utility", "QRXREDOneUtility", "QRXJVCQTUtility",
                     "QRXGoProUtility", "QRXCanonEOSUtility", "QRXQTUtility"}));
}

TEST(Precedence, OrderOfNativeFFmpeg) {
    EXPECT_EQ(namesOf(nativeFFmpegClasses()),
              (Names{"QRXCanonAVCHDUtility", "QRXSonyAVCHDUtility", "QRXPanasonicAVCHDUtility",
                     "QRXJVCMP4Utility", "QRXSonyXDCAMExUtility", "QRXSonyXDCAMHDUtility",
                     "QRXCanonXFUtility", "QRXMXFUtility", "QRXHDFFmpegUtility"}));
}

TEST(VolumeUtilityClass, MakesAndSharesObjectsOfItsOwnClassOnly) {
    for (const VolumeUtilityClass& each : allDefinedClasses()) {
        SCOPED_TRACE(each.name);
        const auto made = each.make();
        EXPECT_NE(made.get(), &each.shared());
        for (const VolumeUtilityClass& other : allDefinedClasses()) {
            EXPECT_EQ(other.isClassOf(*made), each == other) << other.name;
            EXPECT_EQ(other.isClassOf(each.shared()), each == other) << other.name;
        }
    }
}

TEST(VolumeUtilityClass, ObjectsAreOfTheirParentsKind) {
    const auto classNamed = [](std::string_view name) {
        for (const VolumeUtilityClass& each : allDefinedClasses()) {
            if (each.name == name) return each;
        }
        throw std::invalid_argument(std::string(name));
    };
    const VolumeUtilityClass mxf = classNamed("QRXMXFUtility");
    const VolumeUtilityClass canonXf = classNamed("QRXCanonXFUtility");
    EXPECT_TRUE(mxf.isKindOf(canonXf.shared()));
    EXPECT_TRUE(mxf.isKindOf(mxf.shared()));
    EXPECT_FALSE(canonXf.isKindOf(mxf.shared()));
}

}  // namespace
}  // namespace qrx
