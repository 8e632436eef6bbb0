#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qrx {

/// The four numbers of a timecode; no field has a range limit.
struct TimecodeFields {
    std::int32_t hours = 0;
    std::int32_t minutes = 0;
    std::int32_t seconds = 0;
    std::int32_t frames = 0;
};

inline constexpr std::size_t kTimecodeLength = 11;  ///< characters, which are UTF-16 units
inline constexpr std::size_t kFramesSeparatorIndex = 8;
inline constexpr char kDropFrameSeparator = ';';
inline constexpr char kNonDropFrameSeparator = ':';

[[nodiscard]] constexpr char separatorFor(bool dropFrame) {
    return dropFrame ? kDropFrameSeparator : kNonDropFrameSeparator;
}

/// Whether `timecode` has the form of a timecode.
[[nodiscard]] bool hasTimecodeForm(std::string_view timecode);

/// The characters of `text` from `index` on; nothing when the text ends before `count` of them.
[[nodiscard]] std::optional<std::string> charactersAt(std::string_view text, std::size_t index,
                                                      std::size_t count);

/// The fields by position, each as the leading integer of its two characters; nothing when the text
/// is too short. The form is not tested.
[[nodiscard]] std::optional<TimecodeFields> fieldsOf(std::string_view timecode);

/// "%d", with a "0" in front for 9 and less: -3 gives "0-3".
[[nodiscard]] std::string segmentText(std::int32_t number);

[[nodiscard]] std::string timecodeText(const TimecodeFields& fields, bool dropFrame);

/// Toward zero; held inside the range of a 32-bit number, 0 for what is no number.
[[nodiscard]] std::int32_t truncated(double value);
[[nodiscard]] std::int32_t saturated(std::int64_t value);

}  // namespace qrx
