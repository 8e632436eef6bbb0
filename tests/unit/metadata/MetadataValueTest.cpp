#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "metadata/MetadataValue.h"

namespace qrx {
namespace {

struct ValueCase {
    const char* name;
    MetadataValue value;
    std::optional<std::string> text;
};

const ValueCase kValues[] = {
    {"Literal", "abc", "abc"},
    {"Text", std::string("abc"), "abc"},
    {"View", std::string_view("abc").substr(1), "bc"},
    {"EmptyText", "", ""},
    {"PresentOptional", std::optional<std::string>("abc"), "abc"},
    {"AbsentOptional", std::optional<std::string>(), std::nullopt},
    {"Nothing", std::nullopt, std::nullopt},
    {"Default", MetadataValue{}, std::nullopt},
    {"List", std::vector<std::string>{"abc"}, std::nullopt},
    {"Zero", 0, "0"},
    {"Negative", -12, "-12"},
    {"Smallest", std::numeric_limits<std::int64_t>::min(), "-9223372036854775808"},
    {"Largest", std::numeric_limits<std::uint64_t>::max(), "18446744073709551615"},
    {"Small", std::int8_t{7}, "7"},
    {"True", true, "1"},
    {"False", false, "0"},
    {"Rate", 29.97, "29.97"},
    {"FilmRate", 23.976, "23.976"},
    {"WholeDouble", 24.0, "24"},
    {"HugeDouble", 1e20, "1e+20"},
};

class MetadataValueText : public testing::TestWithParam<ValueCase> {};

TEST_P(MetadataValueText, IsTheTextOrTheDecimalNumber) {
    EXPECT_EQ(GetParam().value.text(), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Table, MetadataValueText, testing::ValuesIn(kValues),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace qrx
