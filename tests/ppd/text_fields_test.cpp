#include "ppd/TextFields.h"

#include "tests/Quoted.h"

#include <clocale>
#include <cstdlib>
#include <gtest/gtest.h>
#include <random>
#include <sstream>

namespace {

using PPD::FieldReader;

double Plain(const char *text) {
    double number = -1;
    FieldReader(text).ReadPlainNumber(number);
    return number;
}

double Signed(const std::string &text) {
    double number = -1;
    FieldReader(text).ReadNumber(number);
    return number;
}

int32_t Integer(const char *text) {
    int32_t number = -1;
    FieldReader(text).ReadInteger(number);
    return number;
}

/// The same four numbers as a C++ stream in the classic locale reads them.
std::vector<double> StreamNumbers(const std::string &text) {
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    std::vector<double> numbers(4, 0.0);
    for (double &number : numbers)
        if (double value = 0; stream >> value) number = value;
    return numbers;
}

std::vector<double> FieldNumbers(const std::string &text) {
    FieldReader reader(text);
    std::vector<double> numbers(4, 0.0);
    for (double &number : numbers)
        reader.ReadNumber(number);
    return numbers;
}

} // namespace

TEST(TextFields, PlainNumber_StopsAtTheFirstOtherCharacter) {
    EXPECT_EQ(Plain("300dpi"), 300);
    EXPECT_EQ(Plain("1200x600dpi"), 1200);
    EXPECT_EQ(Plain("0x10"), 0);
    EXPECT_EQ(Plain("600e2"), 600);
    EXPECT_EQ(Plain("360.5dpi"), 360.5);
    EXPECT_EQ(Plain("1.2.3"), 1.2);
    EXPECT_EQ(Plain(".5"), 0.5);
    EXPECT_EQ(Plain("5."), 5);
    EXPECT_EQ(Plain(" \t\n\v\f\r7"), 7);
}

TEST(TextFields, PlainNumber_WithoutDigitsIsNone) {
    for (const char *text : {"", " ", ".", "dpi", "+300", "-300", "inf", "nan", "x1"})
        EXPECT_EQ(Plain(text), -1) << text;
}

TEST(TextFields, Number_TakesSignFractionAndExponent) {
    EXPECT_EQ(Signed("+12"), 12);
    EXPECT_EQ(Signed("-12.5"), -12.5);
    EXPECT_EQ(Signed("1e2"), 100);
    EXPECT_EQ(Signed("1E-2,"), 0.01);
    EXPECT_EQ(Signed("1.e+2"), 100);
}

TEST(TextFields, Number_WithoutDigitsOrBeyondRangeIsNone) {
    for (const char *text : {"", "+", "-.", "e5", "1e", "1e+", "inf", "nan", ",5", "1e999"})
        EXPECT_EQ(Signed(text), -1) << text;
    EXPECT_EQ(Signed(std::string(400, '9')), -1);
}

TEST(TextFields, Numbers_AfterAFailedOneStayAsTheyAre) {
    EXPECT_EQ(FieldNumbers("1 2 x 4"), (std::vector<double>{1, 2, 0, 0}));
    EXPECT_EQ(FieldNumbers("1,2,3,4"), (std::vector<double>{1, 0, 0, 0}));
    EXPECT_EQ(FieldNumbers("1-2+3.4.5"), (std::vector<double>{1, -2, 3.4, 0.5}));
    EXPECT_EQ(FieldNumbers("1\xA0"
                           "2"),
              (std::vector<double>{1, 0, 0, 0}));
}

TEST(TextFields, Numbers_AreThoseOfAClassicStream) {
    std::mt19937 random(1); // fixed: a failure can be run again
    const std::string letters = "0123456789..--+ eE\tx";
    for (int i = 0; i < 20000; ++i) {
        std::string text;
        for (size_t length = random() % 24; length > 0; --length)
            text += letters[random() % letters.size()];
        EXPECT_EQ(FieldNumbers(text), StreamNumbers(text)) << testing::PrintToString(text);
    }
}

TEST(TextFields, Integer) {
    EXPECT_EQ(Integer("5 int"), 5);
    EXPECT_EQ(Integer(" -3"), -3);
    EXPECT_EQ(Integer("+3.5"), 3);
    EXPECT_EQ(Integer("2147483647"), 2147483647);
    EXPECT_EQ(Integer("-2147483648"), -2147483647 - 1);
    for (const char *text : {"", "int", "-", "2147483648", "99999999999999999999"})
        EXPECT_EQ(Integer(text), -1) << text;
}

TEST(TextFields, Word_EndsAtWhiteSpace) {
    FieldReader reader("  points\t72");
    std::string word;
    EXPECT_TRUE(reader.ReadWord(word));
    EXPECT_EQ(word, "points");
    EXPECT_TRUE(reader.ReadWord(word));
    EXPECT_EQ(word, "72");
    EXPECT_FALSE(reader.ReadWord(word));
    EXPECT_EQ(word, "72");
}

TEST(TextFields, Character_IsReadAfterWhiteSpace) {
    FieldReader reader("600 x 300");
    double number = 0;
    char character = 0;
    EXPECT_TRUE(reader.ReadPlainNumber(number));
    EXPECT_TRUE(reader.ReadCharacter(character));
    EXPECT_EQ(character, 'x');
    EXPECT_TRUE(reader.ReadPlainNumber(number));
    EXPECT_EQ(number, 300);
    EXPECT_FALSE(reader.ReadCharacter(character));
}

TEST(TextFields, FailedField_EndsTheText) {
    FieldReader reader("word 5");
    double number = -1;
    int32_t integer = -1;
    std::string word;
    char character = 0;
    EXPECT_FALSE(reader.ReadNumber(number));
    EXPECT_FALSE(reader.ReadWord(word));
    EXPECT_FALSE(reader.ReadInteger(integer));
    EXPECT_FALSE(reader.ReadCharacter(character));
    EXPECT_FALSE(reader.ReadPlainNumber(number));
}

TEST(TextFields, ToNumber_ReadsAsAtofDoes) {
    for (const char *text : {"", "612", " 12.5pt", "-3", "+.5", "1e3", "1e", "0x10", "pt", "."})
        EXPECT_EQ(PPD::ToNumber(text), std::atof(text)) << text; // the test runs in the "C" locale
}

TEST(TextFields, WhiteSpace_IsTheSixASCIICharacters) {
    for (int c = 0; c < 256; ++c)
        EXPECT_EQ(PPD::IsWhiteSpace(static_cast<char>(c)),
                  c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r')
            << c;
}

TEST(TextFields, DecimalPoint_IsAPointInAnyLocale) {
    const char *folder = std::getenv("TEMP");
    ASSERT_NE(folder, nullptr);
    const std::string make =
        "localedef -i de_DE -f UTF-8 " + Quoted(std::string(folder) + "/de_DE.UTF-8") + " 2>&1";
    if (std::system(make.c_str()) != 0) GTEST_SKIP() << "no localedef: nothing has a decimal comma";
    setenv("LOCPATH", folder, 1);
    ASSERT_NE(std::setlocale(LC_ALL, "de_DE.UTF-8"), nullptr);
    ASSERT_EQ(std::atof("1.5"), 1); // the comma is really the decimal separator now
    EXPECT_EQ(PPD::ToNumber("1.5"), 1.5);
    EXPECT_EQ(Signed("1.5"), 1.5);
    EXPECT_EQ(Plain("1.5"), 1.5);
    std::setlocale(LC_ALL, "C");
}
