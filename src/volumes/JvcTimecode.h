#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace qrx {

/// The start timecode that the tag <TimeCode startTc="..." ...> of a JVC sidecar states: eight
/// digits HHMMSSFF, or separated already. Letters and blanks around them do not count.
///
/// KEPT: the tag that says dropFrame="true" gives ":" before the frames, any other ";".
///
/// @return nothing when the tag has no value, or one that is neither 8 nor 11 characters long.
[[nodiscard]] std::optional<std::string> timecodeInJvcTag(std::string_view tag);

}  // namespace qrx
