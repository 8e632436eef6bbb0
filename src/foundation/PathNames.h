#pragma once

#include <string>
#include <string_view>

namespace qrx {

// Characters in names: the sets, and what is done with them. Nothing here touches the disk.

/// Not wanted in a path; each character is one member.
inline constexpr std::string_view kInvalidFilePathCharacters = ":'*?[]^{}~$&|<>\\;()";
/// Not wanted in one name: those and "/".
inline constexpr std::string_view kInvalidFileNameCharacters = ":'*?[]^{}~$&|<>\\;()/";
/// Taken out of file names. KEPT: unlike the set for paths it has the blank and no backslash.
inline constexpr std::string_view kRemovedFileNameCharacters = " '*?[]^{}:~$&|<>;()";
/// Escaped for a command line, in this order. The backslash itself is none of them.
inline constexpr std::string_view kTerminalEscapeCharacters = " !#$%&*()=[]|;'\"<>?";

/// `text` without the members of `characters`, which are all ASCII.
[[nodiscard]] std::string withoutCharacters(std::string_view text, std::string_view characters);

/// `path` with a backslash before each kTerminalEscapeCharacters. KEPT: backslash, backtick and
/// line end pass unescaped, so the result is for display and logs; no shell is ever given it.
[[nodiscard]] std::string escapedForTerminal(std::string_view path);

enum class Point { dropped, kept };

/// The decimal digits of `text` (and its "."s). KEPT: each UTF-16 unit is narrowed to its low byte
/// first, so that U+0130 counts as "0".
[[nodiscard]] std::string digitsOnly(std::string_view text, Point point);

/// Whether the last component, or the path itself, begins with ".".
[[nodiscard]] bool pathIsHidden(std::string_view path);

}  // namespace qrx
