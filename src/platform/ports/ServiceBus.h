#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <stop_token>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/ports/BusValue.h"
#include "platform/ports/Clock.h"

namespace qrx::platform {

/// What went wrong with a call.
enum class BusFault {
    unreachable,  ///< there is no bus to speak to
    vanished,     ///< whoever served the object is gone
    timedOut,     ///< no answer within the time limit
    refused,      ///< the object answered with an error
};

/// An error that a caller sees: thrown by ServiceBus::call, and by a BusObject to refuse a call.
class BusError : public std::runtime_error {
public:
    BusError(BusFault fault, std::string name, const std::string& text)
        : std::runtime_error(text), fault_(fault), name_(std::move(name)) {}

    [[nodiscard]] BusFault fault() const { return fault_; }
    /// Name of the error on the bus, e.g. "com.quillfen.Error.TooLarge".
    [[nodiscard]] const std::string& name() const { return name_; }

private:
    BusFault fault_;
    std::string name_;
};

/// The arguments of a call are not what the member takes.
inline constexpr std::string_view kInvalidArguments = "org.freedesktop.DBus.Error.InvalidArgs";
/// The answer is larger than a bus carries.
inline constexpr std::string_view kAnswerTooLarge = "com.quillfen.Error.TooLarge";

/// Any other fault while a call was served.
inline constexpr std::string_view kCallFailed = "com.quillfen.Error.Failed";

/// Most bytes of one answer. The bus cuts a connection off that sends more than 64 MiB in one
/// array.
inline constexpr std::size_t kMostAnswerBytes = 60'000'000;

/// One call that has arrived. Its arguments have been held against the interface description.
struct BusCall {
    std::string sender;  ///< who asks; usable with ServiceBus::notify
    std::string interfaceName;
    std::string member;
    BusValues arguments;
    std::stop_token callerGone;  ///< stopped when whoever asked has left the bus

    /// The argument at `index`; throws BusError (invalid arguments) when it is not of type `Kind`.
    template <class Kind>
    [[nodiscard]] const Kind& argument(std::size_t index) const {
        const Kind* value =
            index < arguments.size() ? arguments[index].template as<Kind>() : nullptr;
        if (value == nullptr) {
            throw BusError(BusFault::refused, std::string(kInvalidArguments),
                           member + ": argument " + std::to_string(index + 1) +
                               " is missing or of another type");
        }
        return *value;
    }
};

/// What an object says to a call.
struct BusAnswer {
    BusAnswer() = default;
    BusAnswer(BusValues values) : results(std::move(values)) {}
    BusAnswer(BusValues values, std::function<void()> next)
        : results(std::move(values)), afterwards(std::move(next)) {}

    BusValues results;  ///< in the member's order
    /// Done once the answer is on its way, e.g. to end the process; may be empty.
    std::function<void()> afterwards;
};

/// The way out of an answer that is too large, where there is no better one.
inline constexpr std::string_view kAskForLess = "Ask for less at a time.";

/// On which thread a member is served.
enum class ServedOn {
    mainThread,  ///< with all others, one at a time, in order of arrival
    ownThread,   ///< a thread that is started for this call alone
};

/// An object that others call over the bus.
class BusObject {
public:
    virtual ~BusObject() = default;

    /// The interfaces that it serves: documents of D-Bus introspection XML.
    [[nodiscard]] virtual std::vector<std::string_view> interfaceDescriptions() const = 0;

    [[nodiscard]] virtual ServedOn servedOn(std::string_view interfaceName,
                                            std::string_view member) const = 0;

    /// What a caller may do whose answer was too large for the bus, as a sentence.
    [[nodiscard]] virtual std::string_view wayOutOfLargeAnswers() const { return kAskForLess; }

    /// Throws BusError to answer with an error; any other fault reaches the caller as
    /// "com.quillfen.Error.Failed". A member that never answers does not return.
    [[nodiscard]] virtual BusAnswer answer(const BusCall& call) = 0;
};

/// Where an object is found.
struct BusAddress {
    std::string connectionName;  ///< as it was looked up
    std::string busName;         ///< what the bus calls it
    std::string owner;           ///< the one process behind it
    std::string objectPath;

    bool operator==(const BusAddress&) const = default;
};

/// A call or a signal to be sent.
struct BusMessage {
    std::string interfaceName;
    std::string member;
    std::string signature;  ///< of the arguments, one letter or container each, e.g. "ssb"
    BusValues arguments;
};

/// Connections with names, on this user's session.
///
/// A connection name is any text, the empty one included. The root object of a connection is the
/// one object that it serves.
class ServiceBus {
public:
    /// No time limit at all.
    static constexpr Clock::Duration kNoTimeLimit = Clock::Duration::max();

    virtual ~ServiceBus() = default;

    /// Who serves under `connectionName`; nothing when nobody does. Never starts anybody. Throws
    /// BusError when there is no bus.
    [[nodiscard]] virtual std::optional<BusAddress> rootProxy(std::string_view connectionName) = 0;

    /// Serves `root` under `connectionName` until the process ends; one root object per process, a
    /// further name leads to the same one. NO when somebody else has the name. Throws BusError when
    /// there is no bus, or when the bus refuses.
    [[nodiscard]] virtual bool vend(std::string_view connectionName,
                                    std::shared_ptr<BusObject> root) = 0;

    /// Calls and waits. Throws BusError; a service that has gone is an error, whoever has taken its
    /// name since.
    [[nodiscard]] virtual BusValues call(const BusAddress& object, const BusMessage& request,
                                         Clock::Duration timeLimit) = 0;

    /// Calls without waiting for an answer, for members that give none. Throws BusError when the
    /// service has gone already.
    virtual void tell(const BusAddress& object, const BusMessage& request) = 0;

    /// Sends a signal of the root object to `receiver` alone; lost without a word when it is gone.
    virtual void notify(const std::string& receiver, const BusMessage& signal) = 0;
};

}  // namespace qrx::platform
