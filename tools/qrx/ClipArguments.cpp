#include "qrx/ClipArguments.h"

#include "qrx/Names.h"
#include "qrx/ShownText.h"
#include "volumes/QRXHDMediaVolumeAggregate.h"

namespace qrx::tool {

void complainOf(const std::string& argument, const std::string& why, Session& session) {
    session.console.say((argument.empty() ? "''" : shown(argument)) + ": " + why);
}

int visitClips(const std::vector<std::string>& arguments, Session& session,
               const ClipVisit& visit) {
    int status = kDone;
    for (const std::string& argument : arguments) {
        const FilePath file = absolutePath(argument);
        if (const auto why = whyNoFile(file)) {
            complainOf(argument, *why, session);
            status = kTrouble;
            continue;
        }
        const auto& utility =
            QRXHDMediaVolumeAggregate::sharedInstance().utilityForFileAtPath(file);
        if (session.isCancelled) return kTrouble;  // its answer may be that of an ended tool
        if (utility.volumeType() == QRXHDMediaVolumeUtilityObject::kNoDefinedVolume) {
            complainOf(argument, "no layout claims it (qrx explain says why)", session);
            status = kTrouble;
            continue;
        }
        visit(argument, file, utility);
        if (session.isCancelled) return kTrouble;
    }
    return status;
}

}  // namespace qrx::tool
