#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "qrx/report/CardBuilder.h"

namespace qrx::tool {

/// The files on cards that belong to a clip: those that the layout names for it (sidecar, sound,
/// raw footage), and those that bear its name elsewhere on the card (thumbnails, indexes, proxies,
/// sound files beyond the layout's own count).
class Companions {
public:
    explicit Companions(const std::vector<ReportedFile>& files);

    /// Layout of the clip that the file belongs to; null when it belongs to none.
    [[nodiscard]] const QRXHDMediaVolumeUtilityObject* layoutOf(const ReportedFile& file) const;

private:
    using Layouts = std::unordered_map<std::string, const QRXHDMediaVolumeUtilityObject*>;

    Layouts named_;  ///< by path
    /// By card, then by the names of its clips, without extension and in upper case.
    std::unordered_map<FilePath, Layouts> clipNames_;
};

/// The names of clips, without extension, that the name of another file may be made from: itself,
/// and without a part such as "00" (sound), "M01" (sidecar) or "S01" (proxy) at its end.
[[nodiscard]] std::vector<std::string> possibleClipNames(std::string_view name);

}  // namespace qrx::tool
