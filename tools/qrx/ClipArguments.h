#pragma once

#include <functional>
#include <string>
#include <vector>

#include "foundation/FilePath.h"
#include "qrx/Session.h"
#include "volumes/QRXHDMediaVolumeUtilityObject.h"

namespace qrx::tool {

/// Names an argument on the console, and what is wrong with it.
void complainOf(const std::string& argument, const std::string& why, Session& session);

using ClipVisit = std::function<void(const std::string& argument, const FilePath& file,
                                     const QRXHDMediaVolumeUtilityObject& utility)>;

/// Calls `visit` for each argument that is a clip, in their order, with its absolute path and the
/// utility of its layout, until the session is cancelled. What is no clip is named on the console.
/// Gives kTrouble when that was so, or the session was cancelled on the way.
[[nodiscard]] int visitClips(const std::vector<std::string>& arguments, Session& session,
                             const ClipVisit& visit);

}  // namespace qrx::tool
