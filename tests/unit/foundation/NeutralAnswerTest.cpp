#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/NeutralAnswer.h"
#include "platform/fake/RecordingSystemLog.h"
#include "platform/ports/Services.h"

namespace qrx {
namespace {

using Lines = std::vector<std::string>;

class NeutralAnswer : public testing::Test {
protected:
    NeutralAnswer() { services_->systemLog = log_; }

    std::shared_ptr<platform::RecordingSystemLog> log_ =
        std::make_shared<platform::RecordingSystemLog>();
    platform::ScopedServices services_;
};

TEST_F(NeutralAnswer, IsNotUsedWhenTheQuestionIsAnswered) {
    EXPECT_EQ(answerOr(7, "here", [] { return 8; }), 8);
    EXPECT_EQ(log_->notices(), Lines{});
}

TEST_F(NeutralAnswer, TakesThePlaceOfAFaultWhichIsLogged) {
    const auto fails = []() -> std::string { throw std::out_of_range("too short"); };
    EXPECT_EQ(answerOr(std::string("neutral"), "startTimecode", fails), "neutral");
    EXPECT_EQ(log_->notices(), Lines{"startTimecode: too short"});
}

TEST_F(NeutralAnswer, TakesThePlaceOfAnythingThrown) {
    EXPECT_EQ(answerOr(1, "here", []() -> int { throw 42; }), 1);
    EXPECT_EQ(answerOr(2, "there", []() -> int { throw std::bad_alloc(); }), 2);
    EXPECT_EQ(log_->notices(), (Lines{"here: unknown fault", "there: std::bad_alloc"}));
}

TEST_F(NeutralAnswer, OfACancelledRunIsNoFault) {
    EXPECT_FALSE(answerOr(false, "here", []() -> bool { throw platform::RunCancelled(); }));
    EXPECT_EQ(log_->notices(), Lines{});
}

TEST_F(NeutralAnswer, IsGivenAlsoWithoutALog) {
    services_->systemLog.reset();
    EXPECT_EQ(answerOr(3, "here", []() -> int { throw std::runtime_error("fault"); }), 3);
    logFault("here", "nobody hears this");
}

TEST_F(NeutralAnswer, IsGivenAlsoWhenTheLogFails) {
    struct FailingLog final : platform::SystemLog {
        void notice(std::string_view) override { throw std::runtime_error("log is full"); }
        void debug(std::string_view) override { throw std::runtime_error("log is full"); }
    };
    services_->systemLog = std::make_shared<FailingLog>();
    EXPECT_EQ(answerOr(4, "here", []() -> int { throw std::runtime_error("fault"); }), 4);
}

}  // namespace
}  // namespace qrx
