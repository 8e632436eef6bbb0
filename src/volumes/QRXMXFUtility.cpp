#include "volumes/QRXMXFUtility.h"

#include <array>

#include "foundation/NeutralAnswer.h"
#include "foundation/SharedInstance.h"
#include "readers/MxfClipQuestions.h"
#include "readers/MxfKeySearch.h"
#include "timecode/QRXTimecodeUtility.h"

namespace qrx {

namespace {

CheckVerdict beginsAsMxf(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return passesIf(mxfFileHasSignature(path.path()));
}

constexpr std::array kChecks{
    StructureCheck{"the file begins with the bytes of an MXF header partition", beginsAsMxf},
};

MxfValueForm valueForm(bool convertHex) {
    return convertHex ? MxfValueForm::decimalText : MxfValueForm::hexText;
}

}  // namespace

std::unique_ptr<QRXMXFUtility> QRXMXFUtility::utility() {
    return std::make_unique<QRXMXFUtility>();
}

QRXMXFUtility& QRXMXFUtility::sharedInstance() {
    return sharedInstanceOf<QRXMXFUtility>();
}

std::span<const StructureCheck> QRXMXFUtility::structureChecks() const {
    return kChecks;
}

QRXVideoFrameRate QRXMXFUtility::framerateForVideoFile(const FilePath& file) const {
    return filePathMatchesVolumeStructure(file) ? mxfFrameRate(file) : QRXVideoFrameRateUndefined;
}

std::string QRXMXFUtility::startTimecodeForVideoFile(const FilePath& file) const {
    return filePathMatchesVolumeStructure(file) ? mxfStartTimecode(file)
                                                : QRXTimecodeUtility::defaultTimecode();
}

bool QRXMXFUtility::videoFileIsDropFrame(const FilePath& file) const {
    return filePathMatchesVolumeStructure(file) && mxfIsDropFrame(file);
}

std::optional<std::string> QRXMXFUtility::uniqueIdentifierForVideoFile(const FilePath& file) const {
    return mxfUniqueIdentifier(file);
}

QRXMetadataWrapper QRXMXFUtility::metadataWrapperForVideoFilePath(const FilePath& file) const {
    return mxfMetadataWrapper(file, startTimecodeForVideoFile(file));
}

std::optional<std::string> QRXMXFUtility::umidForFilePath(const FilePath& file) const {
    return uniqueIdentifierForVideoFile(file);
}

std::int32_t QRXMXFUtility::durationInEditUnitsForVideoFile(const FilePath& file) const {
    return mxfDurationInEditUnits(file);
}

std::int32_t QRXMXFUtility::editUnitNumeratorForVideoFile(const FilePath& file) const {
    return mxfEditUnitNumerator(file);
}

std::int32_t QRXMXFUtility::editUnitDenominatorForVideoFile(const FilePath& file) const {
    return mxfEditUnitDenominator(file);
}

std::uint64_t QRXMXFUtility::byteSequenceLocation(std::span<const std::byte> pattern,
                                                  std::span<const std::byte> data) const {
    return qrx::byteSequenceLocation(pattern, data);
}

std::optional<std::string> QRXMXFUtility::valueForKey(const QRXMXFKey& key,
                                                      std::span<const std::byte> data,
                                                      bool convertHex) const {
    return answerOr(std::optional<std::string>{}, "valueForKey",
                    [&] { return mxfValueInData(key, data, valueForm(convertHex)); });
}

std::optional<std::string> QRXMXFUtility::valueForKeyInFile(const QRXMXFKey& key,
                                                            const FilePath& file,
                                                            bool convertHex) const {
    return answerOr(std::optional<std::string>{}, "valueForKeyInFile",
                    [&] { return mxfValueInFile(key, file, valueForm(convertHex)); });
}

std::optional<std::span<const std::byte>> QRXMXFUtility::hexValuesFollowingKey(
    std::span<const std::byte> key, std::span<const std::byte> data, std::int64_t location) const {
    return bytesFollowingMxfKey(key, data, location);
}

}  // namespace qrx
