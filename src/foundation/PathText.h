#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "foundation/FilePath.h"

namespace qrx {

// Rules of paths as texts. Nothing here touches the disk, and nothing is normalised unless it says
// so.

/// folder "/" name, plain text: joined("/d/", "a") is "/d//a".
[[nodiscard]] FilePath joinedPath(std::string_view folder, std::string_view name);

/// Text after the last "/", trailing "/"s ignored; "" of "", "/" of slashes only.
[[nodiscard]] std::string lastPathComponent(std::string_view path);
/// As `lastPathComponent`, as a view into `path`.
[[nodiscard]] std::string_view lastPathComponentView(std::string_view path);

/// "/a/b/" gives "/a"; "/a" gives "/"; "a" gives ""; "/a//b" gives "/a".
[[nodiscard]] FilePath withoutLastPathComponent(std::string_view path);
/// As `withoutLastPathComponent`, as a view into `path`.
[[nodiscard]] std::string_view withoutLastPathComponentView(std::string_view path);

/// Of the last component, the text after its last "."; "" where the only "." comes first or there
/// is none.
[[nodiscard]] std::string pathExtension(std::string_view path);

/// Without that last "." and what follows; leading-dot names unchanged; trailing "/"s dropped.
[[nodiscard]] FilePath withoutPathExtension(std::string_view path);

/// "/" first for an absolute path, then the names, empty ones dropped; a trailing "/" adds a last
/// "/".
[[nodiscard]] std::vector<std::string> pathComponents(std::string_view path);

/// "~" expanded, "//" and "/./" collapsed, trailing "/" dropped, ".." resolved only in absolute
/// paths, a leading "/private" dropped before tmp, var and etc.
[[nodiscard]] FilePath standardisedPath(std::string_view path);

}  // namespace qrx
