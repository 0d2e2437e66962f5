// Numbers to text and back, as the device's arithmetic has it.
#include "script/numbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace qel::test {
namespace {

TEST(Numbers, AreWrittenWithFifteenDigits) {
    struct Row {
        double number;
        const char* text;
    };
    const double huge = std::numeric_limits<double>::max(), infinite = std::numeric_limits<double>::infinity();
    for (const Row& row : {Row{100, "100"},
                           Row{0.5, "0.5"},
                           Row{1.0 / 3, "0.333333333333333"},
                           Row{2.0 / 3, "0.666666666666667"},
                           Row{1e14, "100000000000000"},
                           Row{1e15, "1e15"},
                           Row{5e-7, "5e-7"},
                           Row{1e100, "1e100"},
                           Row{0, "0"},
                           Row{-0.0, "0"},
                           Row{0.0001, "0.0000999999999999999"},
                           Row{0.00001, "9.99999999999999e-6"},
                           Row{huge, "1.79769313486231e308"},
                           Row{123456789012345678.0, "1.23456789012346e17"},
                           Row{0.1, "0.1"},
                           Row{-2.5, "-2.5"},
                           Row{1234.5, "1234.5"},
                           Row{0.99999999999999999, "1"},
                           Row{9.9999999999999995e21, "1e22"},
                           Row{infinite, "Infinity"},
                           Row{-infinite, "-Infinity"},
                           Row{std::nan(""), "NaN"}})
        EXPECT_EQ(formatNumber(row.number).view(), row.text);
    for (const double tiny : {1e-307, 5e-324, -2.2e-310})
        EXPECT_NE(formatNumber(tiny).view().find("e-3"), std::string_view::npos) << formatNumber(tiny).view();
}

TEST(Numbers, AreReadAsFarAsTheyGo) {
    struct Row {
        const char* text;
        std::optional<double> number;
    };
    for (const Row& row : {Row{"-.5", -0.5}, Row{"1e", {}}, Row{"+3", 3.0}, Row{" 3", {}}, Row{"", {}}, Row{".", 0.0},
                           Row{"12abc", 12.0}, Row{"1.5e2x", 150.0}, Row{"abc", {}}, Row{"-", {}}, Row{"2e-1", 0.2}})
        EXPECT_EQ(parseNumber(row.text), row.number) << row.text;
    EXPECT_EQ(parseNumber("1e99999999999"), std::numeric_limits<double>::infinity());
    EXPECT_EQ(powerOfTen(0), 1.0);
    EXPECT_EQ(powerOfTen(3), 1000.0);
}

TEST(Numbers, BecomeIntegersWhateverTheyAre) {
    EXPECT_EQ(toInt32(-1.9), -1);
    EXPECT_EQ(toInt32(4294967296.0 + 5), 5);
    EXPECT_EQ(toInt32(2147483648.0), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(toUint32(-1), 0xFFFFFFFFu);
    for (const double odd : {std::nan(""), std::numeric_limits<double>::infinity(), 1e300 * 0})
        EXPECT_EQ(toInt32(odd), 0);
    EXPECT_EQ(formatInteger(std::numeric_limits<std::int32_t>::min()).view(), "-2147483648");
}

}  // namespace
}  // namespace qel::test
