// A small host application: starts the service, asks it one question, and goes away; the service
// follows it.
//
// The program's name contains the title by which the service knows its host.

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>

#include <unistd.h>

#include "app/QRXHDFileMatcherProxy.h"
#include "distributed/QRXDistributedAppController.h"
#include "platform/linux/PlatformServices.h"

namespace {

struct Request {
    std::string bundle;
    /// One for every run: two hosts never share a service.
    std::string connectionName = "example-host." + std::to_string(::getpid());
    qrx::FilePaths locations;
};

/// Beside the folder of this program, where the build puts it.
std::string builtBundle() {
    std::error_code unknown;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", unknown);
    return (program.parent_path().parent_path() / "QRXHDFileMatcher.app").string();
}

/// Nothing when the command line is wrong.
std::optional<Request> requestFrom(int argc, char** argv) {
    Request request;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        const bool isOption = argument == "--bundle" || argument == "--name";
        if (isOption && i + 1 == argc) return std::nullopt;
        if (argument == "--bundle") {
            request.bundle = argv[++i];
        } else if (argument == "--name") {
            request.connectionName = argv[++i];
        } else {
            request.locations.push_back(std::filesystem::absolute(argument).string());
        }
    }
    if (request.locations.empty()) return std::nullopt;
    if (request.bundle.empty()) request.bundle = builtBundle();
    return request;
}

int runHost(const Request& request) {
    qrx::platform::installPlatformServices();
    qrx::QRXDistributedAppController controller;
    // Starts the bundle, waits until it serves, and tells it whom to follow.
    const auto service =
        controller.launchDistributedApplicationAtPath(request.bundle, request.connectionName);
    if (!service) {
        std::cerr << "no service came up from " << request.bundle << '\n';
        return EXIT_FAILURE;
    }
    const qrx::QRXHDFileMatcherProxy matcher(*service);
    std::cerr << "service " << matcher.distributedProcessIdentifier() << " serves "
              << request.connectionName << '\n';
    for (const qrx::PathDictionary& clip :
         matcher.filePathDictionariesForAllHDFilesAtFileSystemLocations(request.locations)) {
        std::cout << clip.volumeTitle << '\t' << (clip.qt ? "qt" : "-") << '\t' << clip.filePath
                  << '\n';
    }
    return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
    const auto request = requestFrom(argc, argv);
    if (!request) {
        std::cerr << "usage: " << argv[0] << " [--bundle BUNDLE] [--name CONNECTION] PATH...\n";
        return 2;
    }
    try {
        return runHost(*request);
    } catch (const std::exception& fault) {
        std::cerr << fault.what() << '\n';
        return EXIT_FAILURE;
    }
}
