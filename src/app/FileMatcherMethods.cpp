#include "app/FileMatcherMethods.h"

#include <string>

#include "app/CallerWatch.h"
#include "app/ClipStream.h"
#include "app/QRXHDFileMatcherController.h"
#include "app/RequestEncoding.h"

namespace qrx {

using platform::BusAnswer;
using platform::BusCall;
using platform::BusValues;
using platform::ServedOn;

std::vector<BusMethod> fileMatcherMethods(const QRXHDFileMatcherController& controller) {
    return {
        {kQRXHDFileMatcherProtocol.interfaceName,
         "filePathDictionariesForAllHDFilesAtFileSystemLocations", ServedOn::mainThread,
         [&controller](const BusCall& call) {
             const CallerWatch caller(call.callerGone);
             return BusAnswer(BusValues{
                 encoded(controller.filePathDictionariesForAllHDFilesAtFileSystemLocations(
                     decodedPaths(call.arguments.at(0)), &caller.isGone()))});
         }},
        {kQRXHDFileMatcherProtocol.interfaceName, "filePathIsQuickTime", ServedOn::mainThread,
         [&controller](const BusCall& call) {
             return BusAnswer(
                 BusValues{controller.filePathIsQuickTime(call.argument<std::string>(0))});
         }},
        {kQRXHDFileMatcherStream.interfaceName, "streamFilePathDictionaries", ServedOn::ownThread,
         [](const BusCall& call) { return streamFilePathDictionaries(call); }},
    };
}

}  // namespace qrx
