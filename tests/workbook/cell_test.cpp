// Cell texts, references and formula moves: the small rules every workbook edit rests on.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "workbook/cell.hpp"
#include "workbook/formula.hpp"
#include "workbook/ref.hpp"

namespace cauce::workbook {
namespace {

TEST(NumberText, IsTheShortestTextThatReadsBackTheSameDoubleInPlainDecimals) {
    const struct {
        double x;
        const char* text;
    } cases[] = {
        {0.015, "0.015"},
        {0, "0"},
        {-0.0, "0"},
        {1e-7, "0.0000001"},
        {-0.00125, "-0.00125"},
        {1e-11, "1E-11"},
        {123456789012345, "123456789012345"},
        {0.1 + 0.2, "0.30000000000000004"},
        {1e21, "1E+21"},
    };
    for (const auto& c : cases) EXPECT_EQ(NumberText(c.x), c.text) << c.x;
}

TEST(NumberFromText, TakesOnlyTextsThatAreEntirelyANumber) {
    const struct {
        const char* text;
        std::optional<double> value;
    } cases[] = {
        {"0.015", 0.015},      {"100", 100},          {"-2.5", -2.5},        {"+5", 5},
        {"1e3", 1000},         {"1E-3", 0.001},       {".5", 0.5},           {"101.50", 101.5},
        {"", std::nullopt},    {" 5", std::nullopt},  {"5 ", std::nullopt},  {"2,5", std::nullopt},
        {"M1", std::nullopt},  {"inf", std::nullopt}, {"nan", std::nullopt}, {"1e999", std::nullopt},
        {"-", std::nullopt},   {".", std::nullopt},   {"1e", std::nullopt},  {"0x10", std::nullopt},
        {"--1", std::nullopt},
    };
    for (const auto& c : cases) EXPECT_EQ(NumberFromText(c.text), c.value) << '"' << c.text << '"';
}

TEST(CellFromText, StoresNumbersAsNumbersOtherTextAsTextAndEmptyAsNothing) {
    EXPECT_EQ(CellFromText("0.04"), Cell::Num(0.04));
    EXPECT_EQ(CellFromText("S2"), Cell::Str("S2"));
    EXPECT_EQ(CellFromText("2,5"), Cell::Str("2,5"));
    EXPECT_EQ(CellFromText("").kind, CellKind::Empty);
    EXPECT_EQ(DisplayText({CellKind::Boolean, 1, {}}), "VERDADERO");
    EXPECT_EQ(DisplayText({CellKind::Error, 0, "#DIV/0!"}), "#DIV/0!");
}

TEST(CellRef, ReadsAndWritesA1References) {
    EXPECT_EQ(ColumnName(1), "A");
    EXPECT_EQ(ColumnName(27), "AA");
    EXPECT_EQ(ColumnName(16384), "XFD");
    const struct {
        const char* ref;
        int row, col;  // 0: not a reference
    } cases[] = {{"A1", 1, 1},   {"AB12", 12, 28}, {"$C$7", 7, 3},     {"XFD1048576", 1048576, 16384},
                 {"XFE1", 0, 0}, {"A0", 0, 0},     {"A1048577", 0, 0}, {"1A", 0, 0},
                 {"A", 0, 0},    {"A1B", 0, 0}};
    for (const auto& c : cases) {
        const auto r = ParseRef(c.ref);
        if (c.row == 0) {
            EXPECT_FALSE(r) << c.ref;
        } else {
            ASSERT_TRUE(r) << c.ref;
            EXPECT_EQ(r->row, c.row) << c.ref;
            EXPECT_EQ(r->col, c.col) << c.ref;
        }
    }
}

TEST(ShiftFormula, MovesRelativeReferencesAsFillingWould) {
    const struct {
        const char* formula;
        int rows, cols;
        const char* moved;
    } cases[] = {
        {"C2*2", 2, 0, "C4*2"},
        {"A1+B2", 1, 1, "B2+C3"},
        {"$A$1+A$1+$A1", 2, 3, "$A$1+D$1+$A3"},
        {"SUM(A1:A3)/COUNT($B$1:B3)", 3, 0, "SUM(A4:A6)/COUNT($B$1:B6)"},
        {"'Hoja 1'!B2+Hoja2!B2", 1, 0, "'Hoja 1'!B3+Hoja2!B3"},
        {"\"A1\"&A1", 1, 0, "\"A1\"&A2"},
        {"LOG10(A1)+ATAN2(B1,C1)", 1, 0, "LOG10(A2)+ATAN2(B2,C2)"},
        {"A2-1", -1, 0, "A1-1"},
        {"A1*2", -1, 0, "#REF!*2"},
        {"SUM(A:A)+SUM(1:1)", 1, 1, "SUM(B:B)+SUM(2:2)"},
        {"Tabla1[Caudal]*B2", 1, 0, "Tabla1[Caudal]*B3"},
        {"1.5E3*C2", 1, 0, "1.5E3*C3"},
    };
    for (const auto& c : cases) EXPECT_EQ(ShiftFormula(c.formula, c.rows, c.cols), c.moved) << c.formula;
}

}  // namespace
}  // namespace cauce::workbook
