#include "volumes/Precedence.h"

#include <algorithm>
#include <array>

#include "volumes/QRXCanonAVCHDUtility.h"
#include "volumes/QRXCanonEOSUtility.h"
#include "volumes/QRXCanonXFUtility.h"
#include "volumes/QRXGoProUtility.h"
#include "volumes/QRXHDFFmpegUtility.h"
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

namespace qrx {

namespace {

constexpr auto kCanonAvchd = volumeUtilityClass<QRXCanonAVCHDUtility>("QRXCanonAVCHDUtility");
constexpr auto kSonyAvchd = volumeUtilityClass<QRXSonyAVCHDUtility>("QRXSonyAVCHDUtility");
constexpr auto kPanasonicAvchd =
    volumeUtilityClass<QRXPanasonicAVCHDUtility>("QRXPanasonicAVCHDUtility");
constexpr auto kJvcMp4 = volumeUtilityClass<QRXJVCMP4Utility>("QRXJVCMP4Utility");
constexpr auto kXdcamEx = volumeUtilityClass<QRXSonyXDCAMExUtility>("QRXSonyXDCAMExUtility");
constexpr auto kP2 = volumeUtilityClass<QRXPanasonicP2Utility>("QRXPanasonicP2Utility");
constexpr auto kXdcamHd = volumeUtilityClass<QRXSonyXDCAMHDUtility>("QRXSonyXDCAMHDUtility");
constexpr auto kCanonXf = volumeUtilityClass<QRXCanonXFUtility>("QRXCanonXFUtility");
constexpr auto kJvcQt = volumeUtilityClass<QRXJVCQTUtility>("QRXJVCQTUtility");
constexpr auto kRedOne = volumeUtilityClass<QRXREDOneUtility>("QRXREDOneUtility");
constexpr auto kGoPro = volumeUtilityClass<QRXGoProUtility>("QRXGoProUtility");
constexpr auto kCanonEos = volumeUtilityClass<QRXCanonEOSUtility>("QRXCanonEOSUtility");
constexpr auto kMxf = volumeUtilityClass<QRXMXFUtility>("QRXMXFUtility");
constexpr auto kFFmpeg = volumeUtilityClass<QRXHDFFmpegUtility>("QRXHDFFmpegUtility");
constexpr auto kQuickTime = volumeUtilityClass<QRXQTUtility>("QRXQTUtility");

// First to claim a file wins. Card layouts stand before the formats that accept a file wherever it
// lies; move a row only together with PrecedenceTest.
constexpr std::array kByPrecedence{
    // The three AVCHD layouts share one clip test; the more conditions, the earlier.
    kCanonAvchd,
    kSonyAvchd,
    kPanasonicAvchd,
    // The folder of JVC's MP4 clips holds the whole XDCAM EX layout.
    kJvcMp4,
    kXdcamEx,
    // MXF files below named folders; only "Clip" is a name that other cards may have as well.
    kP2,
    kXdcamHd,
    kCanonXf,
    // Movies below named folders; EOS cards take any .MOV below DCIM.
    kJvcQt,
    kRedOne,
    kGoPro,
    kCanonEos,
    // By content, wherever the file lies.
    kMxf,
    kFFmpeg,
    kQuickTime,
};

constexpr std::array kAllDefined{
    kP2,    kPanasonicAvchd, kXdcamEx,  kXdcamHd, kSonyAvchd, kRedOne, kJvcQt,     kJvcMp4,
    kGoPro, kCanonAvchd,     kCanonEos, kCanonXf, kMxf,       kFFmpeg, kQuickTime,
};

constexpr std::array kNativeQuickTime{kP2, kRedOne, kJvcQt, kGoPro, kCanonEos, kQuickTime};

constexpr std::array kNativeFFmpeg{
    kCanonAvchd, kSonyAvchd, kPanasonicAvchd, kJvcMp4, kXdcamEx, kXdcamHd, kCanonXf, kMxf, kFFmpeg,
};

/// Whether every defined class stands in exactly one of the two lists, once.
constexpr bool holdEveryClassOnce(std::span<const VolumeUtilityClass> some,
                                  std::span<const VolumeUtilityClass> others = {}) {
    if (some.size() + others.size() != kAllDefined.size()) return false;
    return std::all_of(kAllDefined.begin(), kAllDefined.end(), [&](const auto& wanted) {
        return std::count(some.begin(), some.end(), wanted) +
                   std::count(others.begin(), others.end(), wanted) ==
               1;
    });
}
static_assert(holdEveryClassOnce(kAllDefined));
static_assert(holdEveryClassOnce(kByPrecedence));
static_assert(holdEveryClassOnce(kNativeQuickTime, kNativeFFmpeg));

}  // namespace

std::span<const VolumeUtilityClass> classesByPrecedence() {
    return kByPrecedence;
}

std::span<const VolumeUtilityClass> allDefinedClasses() {
    return kAllDefined;
}

std::span<const VolumeUtilityClass> nativeQuickTimeClasses() {
    return kNativeQuickTime;
}

std::span<const VolumeUtilityClass> nativeFFmpegClasses() {
    return kNativeFFmpeg;
}

}  // namespace qrx
