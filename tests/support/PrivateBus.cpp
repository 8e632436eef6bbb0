#include "support/PrivateBus.h"

#include <array>
#include <csignal>
#include <stdexcept>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace qrx::test {

namespace {

constexpr const char* kDaemon = "/usr/bin/dbus-daemon";

std::string configuration(const std::string& folder) {
    return R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path=)" +
           folder + R"(/bus</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
  <limit name="max_incoming_bytes">1000000000</limit>
  <limit name="max_outgoing_bytes">1000000000</limit>
  <limit name="max_message_size">1000000000</limit>
</busconfig>
)";
}

std::string firstLine(int descriptor) {
    std::string line;
    char byte = 0;
    while (::read(descriptor, &byte, 1) == 1 && byte != '\n')
        line += byte;
    return line;
}

}  // namespace

PrivateBus::PrivateBus() {
    const std::string file = folder_.write("bus.conf", configuration(folder_.path()));
    const std::string option = "--config-file=" + file;
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    daemon_ = ::fork();
    if (daemon_ == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);  // also when the test crashes
        ::dup2(ends[1], STDOUT_FILENO);
        ::execl(kDaemon, kDaemon, option.c_str(), "--nofork", "--nopidfile", "--print-address=1",
                nullptr);
        ::_exit(127);
    }
    ::close(ends[1]);
    address_ = firstLine(ends[0]);
    ::close(ends[0]);
    if (address_.empty()) {
        stop();
        throw std::runtime_error("cannot start " + std::string(kDaemon));
    }
}

PrivateBus::~PrivateBus() {
    stop();
}

void PrivateBus::stop() {
    if (daemon_ <= 0) return;
    ::kill(daemon_, SIGTERM);
    ::waitpid(daemon_, nullptr, 0);
    daemon_ = -1;
}

}  // namespace qrx::test
