#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/FileQuestions.h"
#include "support/TemporaryFolder.h"
#include "volumes/ResetWalk.h"

namespace qrx {
namespace {

using test::CardTree;

/// Everything whose name begins with "x" goes.
std::optional<ResetStep> removeX(const ResetItem& item) {
    if (!item.name.starts_with('x')) return std::nullopt;
    return ResetStep{.kind = ResetStep::Kind::remove, .path = item.path};
}

FilePaths pathsOf(const std::optional<ResetPlan>& plan) {
    FilePaths paths;
    for (const ResetStep& step : plan.value_or(ResetPlan{}))
        paths.push_back(step.path);
    return paths;
}

TEST(ResetWalk, ThePlanNamesWhatGoesInTheOrderOfTheWalk) {
    const CardTree card{"a/x1", "a/b", "x/inside/x2", "c"};
    const auto plan = planForItemsBelow(card.path(), removeX);
    ASSERT_TRUE(plan);
    EXPECT_EQ(pathsOf(plan), (FilePaths{card / "a/x1", card / "x"}));
    EXPECT_TRUE(fileExists(card / "a/x1")) << "a plan touches nothing";
}

TEST(ResetWalk, TheRuleSeesWhatAnItemIs) {
    const CardTree card{"folder/", "file", "target/"};
    card.link("linkToFolder", "target");
    card.link("dangling", "nowhere");
    std::vector<std::string> seen;
    const auto plan = planForItemsBelow(card.path(), [&](const ResetItem& item) {
        const char* const kind = item.kind == EntryKind::folder ? " folder"
                                 : item.kind == EntryKind::link ? " link"
                                                                : " other";
        seen.push_back(std::string(item.name) + kind + (item.exists ? "" : " gone"));
        return std::optional<ResetStep>();
    });
    EXPECT_EQ(seen, (std::vector<std::string>{"dangling link gone", "file other", "folder folder",
                                              "linkToFolder link", "target folder"}));
    ASSERT_TRUE(plan);
    EXPECT_TRUE(plan->empty());
}

TEST(ResetWalk, NothingBehindALinkIsInThePlan) {
    const CardTree outside{"x1"};
    const CardTree card{"c"};
    card.link("link", outside.path());
    card.link("xlink", outside.path());
    EXPECT_EQ(pathsOf(planForItemsBelow(card.path(), removeX)), FilePaths{card / "xlink"});
}

TEST(ResetWalk, ADriveThatIsALinkHasNoPlan) {
    const CardTree card{"x1"};
    const CardTree other{"c"};
    const std::string link = other.link("drive", card.path());
    EXPECT_FALSE(planForItemsBelow(link, removeX));
    EXPECT_FALSE(planForItemsBelow(link + "/", removeX));
    EXPECT_FALSE(planForItemsBelow(link + "//", removeX));
}

TEST(ResetWalk, WhatIsNoFolderHasAPlanWithoutSteps) {
    const CardTree card{"x1"};
    for (const std::string& drive : {card / "missing", card / "x1", std::string()}) {
        const auto plan = planForItemsBelow(drive, removeX);
        ASSERT_TRUE(plan);
        EXPECT_TRUE(plan->empty());
    }
}

}  // namespace
}  // namespace qrx
