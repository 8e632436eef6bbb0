#pragma once

#include "foundation/FilePath.h"

namespace qrx {

/// `path` itself when nothing exists there; otherwise the first free one of NAME.EXT, NAME-2.EXT,
/// NAME-3.EXT and so on in the same folder. A folder has no extension: what follows the last "." of
/// its name is dropped. Nothing is reserved: another process may take the name meanwhile.
///
/// KEPT: an existing file NAME without extension gives NAME-2., with a lone point; an existing
/// folder take.one gives take, where that is free; a relative path comes back with a "/" in front.
[[nodiscard]] FilePath uniquePath(const FilePath& path);

/// Makes a folder at `uniquePath(path)`, with the folders above it. Answers that path whether or
/// not the folder could be made.
[[nodiscard]] FilePath createUniqueFolder(const FilePath& path);

/// `path` itself when nothing exists there; otherwise the first free one of path-2, path-3 and so
/// on. KEPT: the number follows the extension, as in clip.mov-2.
[[nodiscard]] FilePath freeFolderPath(const FilePath& path);

}  // namespace qrx
