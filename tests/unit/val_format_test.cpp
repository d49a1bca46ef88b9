// Reading and writing numbers as the legacy screens did.
#include <gtest/gtest.h>

#include <limits>

#include "forms/format.hpp"
#include "forms/val.hpp"
#include "hydraulics/checked_math.hpp"

using cauce::Fault;
using cauce::forms::CInt;
using cauce::forms::Format;
using cauce::forms::Val;

TEST(Val, ReadsLikeTheLegacyConversion) {
    const struct {
        const char* text;
        double value;
    } cases[] = {
        {"", 0},       {"abc", 0},    {"  12.5", 12.5},  {"2,5", 2},     {"1 2 3", 123},
        {" - 3", -3},  {"+4", 4},     {".5", 0.5},       {"1.2.3", 1.2}, {"-1.5e2", -150},
        {"1D3", 1000}, {"2d-1", 0.2}, {"1e", 1},         {"1e+", 1},     {"3E 2", 300},
        {"&H1F", 31},  {"&o17", 15},  {"0.015m", 0.015}, {"1e-400", 0},  {"\t7\n", 7},
        {"-", 0},      {".", 0},      {"12abc34", 12},   {"0.1", 0.1},   {"100.53", 100.53},
    };
    for (const auto& c : cases) EXPECT_EQ(Val(c.text), c.value) << '"' << c.text << '"';
}

TEST(Val, OverflowIsAFault) {
    EXPECT_THROW(Val("1e400"), Fault);
    EXPECT_THROW(Val("-9e999999999999"), Fault);
}

TEST(CInt, RoundsHalfToEvenWithinTheIntegerRange) {
    EXPECT_EQ(CInt(2.5), 2);
    EXPECT_EQ(CInt(3.5), 4);
    EXPECT_EQ(CInt(-2.5), -2);
    EXPECT_EQ(CInt(2.4999), 2);
    EXPECT_EQ(CInt(32767.4), 32767);
    EXPECT_EQ(CInt(-32768), -32768);
    EXPECT_THROW(CInt(32767.5), Fault);
    EXPECT_THROW(CInt(-40000), Fault);
}

TEST(Format, RoundsHalfAwayFromZeroOnFifteenDigits) {
    const struct {
        double value;
        const char* pattern;
        const char* text;
    } cases[] = {
        {2.675, "0.00", "2.68"},  // 2.67499999999999982 in binary: 15 digits first
        {9.995, "0.00", "10.00"},
        {-0.0049, "0.00", "0.00"},
        {-0.005, "0.00", "-0.01"},
        {-0.0, "0.000", "0.000"},
        {0.0005, "0.000", "0.001"},
        {123456789012345678.0, "0.00", "123456789012346000.00"},
        {5, "0", "5"},
    };
    for (const auto& c : cases) EXPECT_EQ(Format(c.value, c.pattern), c.text) << c.value << " " << c.pattern;
}

TEST(Format, NeverShowsInfOrNan) {
    EXPECT_THROW(Format(std::numeric_limits<double>::infinity(), "0.00"), Fault);
    EXPECT_THROW(Format(std::numeric_limits<double>::quiet_NaN(), "0.000"), Fault);
}
