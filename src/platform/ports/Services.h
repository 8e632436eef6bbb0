#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "platform/ports/Clock.h"
#include "platform/ports/DiskStatistics.h"
#include "platform/ports/DriveManager.h"
#include "platform/ports/Image.h"
#include "platform/ports/Inflater.h"
#include "platform/ports/MainThread.h"
#include "platform/ports/MountTable.h"
#include "platform/ports/ProcessRunner.h"
#include "platform/ports/PropertyList.h"
#include "platform/ports/RunningApplications.h"
#include "platform/ports/ServiceBus.h"
#include "platform/ports/SystemLog.h"
#include "platform/ports/TextRules.h"
#include "platform/ports/Thumbnailer.h"
#include "platform/ports/VolumeIdentity.h"
#include "platform/ports/XmlDocument.h"

namespace qrx::platform {

/// Everything of the system that is in force: set once in main by installPlatformServices(),
/// replaced piece by piece in tests (ScopedServices).
struct Services {
    std::shared_ptr<ProcessRunner> processRunner;
    std::shared_ptr<MountTable> mountTable;
    std::shared_ptr<MainThread> mainThread;
    std::shared_ptr<Clock> clock;
    std::shared_ptr<TextRules> textRules;
    std::shared_ptr<SystemLog> systemLog;
    std::shared_ptr<Inflater> inflater;
    std::shared_ptr<ImageCodec> imageCodec;
    std::shared_ptr<Thumbnailer> thumbnailer;
    std::shared_ptr<RunningApplications> runningApplications;
    std::shared_ptr<ServiceBus> serviceBus;
    std::shared_ptr<DiskStatistics> diskStatistics;
    std::shared_ptr<VolumeIdentity> volumeIdentity;
    std::shared_ptr<DriveManager> driveManager;
    std::shared_ptr<XmlParser> xmlParser;
    std::shared_ptr<PropertyListCodec> propertyLists;
    /// Path of the ffmpeg tool that the host chose; empty when it chose none.
    std::string ffmpegPath;
    static constexpr unsigned kOneJobPerCore = 0;
    /// How many files one request examines at a time, unless it says so itself.
    unsigned jobs = kOneJobPerCore;
    /// The program's resource folder, absolute, no trailing "/".
    std::string resourceFolder;
    /// The command line, the program's path first.
    std::vector<std::string> arguments;
};

/// The one record of what is in force.
[[nodiscard]] inline Services& services() {
    static Services inForce;
    return inForce;
}

namespace detail {
template <class Port>
[[nodiscard]] Port& inForce(const std::shared_ptr<Port>& port, const char* name) {
    if (!port) throw std::logic_error(std::string("no platform service installed: ") + name);
    return *port;
}
}  // namespace detail

[[nodiscard]] inline ProcessRunner& processRunner() {
    return detail::inForce(services().processRunner, "ProcessRunner");
}
[[nodiscard]] inline MountTable& mountTable() {
    return detail::inForce(services().mountTable, "MountTable");
}
[[nodiscard]] inline MainThread& mainThread() {
    return detail::inForce(services().mainThread, "MainThread");
}
[[nodiscard]] inline Clock& clock() {
    return detail::inForce(services().clock, "Clock");
}
[[nodiscard]] inline TextRules& textRules() {
    return detail::inForce(services().textRules, "TextRules");
}
[[nodiscard]] inline SystemLog& systemLog() {
    return detail::inForce(services().systemLog, "SystemLog");
}
[[nodiscard]] inline Inflater& inflater() {
    return detail::inForce(services().inflater, "Inflater");
}
[[nodiscard]] inline DiskStatistics& diskStatistics() {
    return detail::inForce(services().diskStatistics, "DiskStatistics");
}
[[nodiscard]] inline VolumeIdentity& volumeIdentity() {
    return detail::inForce(services().volumeIdentity, "VolumeIdentity");
}
[[nodiscard]] inline DriveManager& driveManager() {
    return detail::inForce(services().driveManager, "DriveManager");
}
[[nodiscard]] inline XmlParser& xmlParser() {
    return detail::inForce(services().xmlParser, "XmlParser");
}
[[nodiscard]] inline PropertyListCodec& propertyLists() {
    return detail::inForce(services().propertyLists, "PropertyListCodec");
}
[[nodiscard]] inline ImageCodec& imageCodec() {
    return detail::inForce(services().imageCodec, "ImageCodec");
}
[[nodiscard]] inline Thumbnailer& thumbnailer() {
    return detail::inForce(services().thumbnailer, "Thumbnailer");
}
[[nodiscard]] inline RunningApplications& runningApplications() {
    return detail::inForce(services().runningApplications, "RunningApplications");
}
[[nodiscard]] inline ServiceBus& serviceBus() {
    return detail::inForce(services().serviceBus, "ServiceBus");
}

/// Puts the services back as they were when it goes out of scope.
class ScopedServices {
public:
    ScopedServices() : before_(services()) {}
    ~ScopedServices() { services() = std::move(before_); }
    ScopedServices(const ScopedServices&) = delete;
    ScopedServices& operator=(const ScopedServices&) = delete;

    [[nodiscard]] Services* operator->() const { return &services(); }

private:
    Services before_;
};

}  // namespace qrx::platform
