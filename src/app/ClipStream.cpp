#include "app/ClipStream.h"

#include <algorithm>
#include <atomic>
#include <optional>
#include <string>
#include <utility>

#include "app/CallerWatch.h"
#include "app/LineWriter.h"
#include "app/QRXHDFileMatcherProtocol.h"
#include "app/RequestEncoding.h"
#include "platform/ports/Services.h"
#include "volumes/FileMatcher.h"

namespace qrx {

using platform::BusError;
using platform::BusFault;
using platform::BusValue;

namespace {

constexpr std::chrono::milliseconds kProgressInterval{100};

constexpr const char* kReaderStalled = "com.quillfen.Error.ReaderStalled";
constexpr const char* kReaderGone = "com.quillfen.Error.ReaderGone";
constexpr const char* kCancelled = "com.quillfen.Error.Cancelled";
constexpr const char* kLimitsExceeded = "org.freedesktop.DBus.Error.LimitsExceeded";

std::atomic<int> streamsUnderWay = 0;

/// One of the few places for a stream.
class StreamPlace {
public:
    StreamPlace() {
        if (++streamsUnderWay <= kMostStreams) return;
        --streamsUnderWay;
        throw BusError(BusFault::refused, kLimitsExceeded,
                       std::to_string(kMostStreams) + " streams are under way");
    }
    ~StreamPlace() { --streamsUnderWay; }
    StreamPlace(const StreamPlace&) = delete;
    StreamPlace& operator=(const StreamPlace&) = delete;
};

[[noreturn]] void refuseOption(std::string_view name, const std::string& why) {
    throw BusError(BusFault::refused, std::string(platform::kInvalidArguments),
                   std::string(name) + " " + why);
}

/// Nothing when the caller did not give it.
template <class Kind>
std::optional<Kind> option(const BusValue::Dictionary& options, std::string_view name,
                           std::string_view type) {
    const auto found = std::find_if(options.begin(), options.end(),
                                    [&](const auto& one) { return one.first == name; });
    if (found == options.end()) return std::nullopt;
    const Kind* value = found->second.template as<Kind>();
    if (value == nullptr) refuseOption(name, "is not of type " + std::string(type));
    return *value;
}

std::optional<std::uint32_t> number(const BusValue::Dictionary& options, std::string_view name) {
    return option<std::uint32_t>(options, name, "u");
}

MatchOptions matchOptions(const BusValue::Dictionary& options) {
    MatchOptions chosen;
    if (const auto jobs = number(options, "jobs")) {
        if (*jobs < 1 || *jobs > WorkLimits::kMostJobs) {
            refuseOption("jobs", "is no number from 1 to " + std::to_string(WorkLimits::kMostJobs));
        }
        chosen.jobs = *jobs;
    }
    chosen.isQuick = option<bool>(options, "quick", "b").value_or(false);
    return chosen;
}

/// Tells the caller how far its request has come, and not too often.
class ProgressTeller {
public:
    ProgressTeller(std::string receiver, const BusValue::Dictionary& options)
        : receiver_(std::move(receiver)), id_(number(options, "id").value_or(0)) {
        if (const auto given = number(options, "progressInterval")) {
            interval_ = std::chrono::milliseconds{*given};
        }
    }

    void tell(std::uint64_t filesDone, std::uint64_t clipsFound) {
        const auto now = platform::clock().now();
        if (last_ && now - *last_ < interval_) return;
        last_ = now;
        platform::serviceBus().notify(
            receiver_, {.interfaceName = std::string(kQRXHDFileMatcherStream.interfaceName),
                        .member = "Progress",
                        .signature = "ttu",
                        .arguments = {filesDone, clipsFound, id_}});
    }

private:
    std::string receiver_;
    std::uint32_t id_;
    platform::Clock::Duration interval_ = kProgressInterval;
    std::optional<platform::Clock::Duration> last_;
};

MatchSummary matchInto(LineWriter& writer, ProgressTeller& progress, const FilePaths& locations,
                       MatchOptions options, const CallerWatch& caller) {
    MatchListener listener;
    listener.onClip = [&](const PathDictionary& clip) { writer.write(jsonLine(clip)); };
    listener.onProgress = [&](const MatchProgress& so) {
        progress.tell(so.filesDone, so.clipsFound);
    };
    listener.isCancelled = &caller.isGone();
    return FileMatcher(options).match(locations, listener);
}

}  // namespace

platform::BusAnswer streamFilePathDictionaries(const platform::BusCall& call,
                                               platform::Clock::Duration stallLimit) {
    const StreamPlace place;
    const FilePaths locations = decodedPaths(call.arguments.at(0));
    const auto& options = call.argument<BusValue::Dictionary>(1);
    const MatchOptions chosen = matchOptions(options);
    ProgressTeller progress(call.sender, options);
    LineWriter writer(call.argument<platform::BusDescriptor>(2), stallLimit, call.callerGone);
    const CallerWatch caller(call.callerGone);
    try {
        const MatchSummary summary = matchInto(writer, progress, locations, chosen, caller);
        if (summary.wasCancelled) throw WritingCancelled{};
        return platform::BusValues{summary.filesDone, summary.clipsFound};
    } catch (const ReaderStalled& fault) {
        throw BusError(BusFault::refused, kReaderStalled, fault.what());
    } catch (const ReaderGone& fault) {
        throw BusError(BusFault::refused, kReaderGone, fault.what());
    } catch (const WritingCancelled&) {
        throw BusError(BusFault::refused, kCancelled, "the caller has gone");
    }
}

}  // namespace qrx
