#include <string>
#include <string_view>
#include <syslog.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/linux/SyslogSystemLog.h"

namespace qrx::platform {
namespace {

/// What reaches the system's log, which is told to repeat it on standard error.
class SyslogSystemLogTest : public testing::Test {
protected:
    SyslogSystemLogTest() {
        ::openlog("qrx", LOG_PERROR, LOG_USER);
        testing::internal::CaptureStderr();
    }
    ~SyslogSystemLogTest() override { ::openlog(nullptr, 0, LOG_USER); }
    SyslogSystemLogTest(const SyslogSystemLogTest&) = delete;
    SyslogSystemLogTest& operator=(const SyslogSystemLogTest&) = delete;

    [[nodiscard]] static std::string logged() { return testing::internal::GetCapturedStderr(); }

    SyslogSystemLog log_;
};

TEST_F(SyslogSystemLogTest, TextIsNoFormat) {
    log_.notice("%s%n%s 100%");
    log_.debug("%d");
    EXPECT_EQ(logged(), "qrx: %s%n%s 100%\nqrx: %d\n");
}

TEST_F(SyslogSystemLogTest, TextNeedsNoEnd) {
    log_.notice(std::string_view("clip and more").substr(0, 4));
    log_.debug({});
    EXPECT_EQ(logged(), "qrx: clip\nqrx: \n");
}

TEST_F(SyslogSystemLogTest, LongTextGoesOutInPiecesOfWholeCharacters) {
    const std::string first(SyslogSystemLog::kLongestMessage - 1, 'a');
    log_.debug(first + "é" + "end");
    EXPECT_EQ(logged(), "qrx: " + first + "\nqrx: éend\n");
}

TEST_F(SyslogSystemLogTest, LongTextThatIsNotUtf8StillEnds) {
    log_.debug(std::string(2 * SyslogSystemLog::kLongestMessage, '\x80'));
    EXPECT_THAT(logged(), testing::StartsWith("qrx: \x80"));
}

}  // namespace
}  // namespace qrx::platform
