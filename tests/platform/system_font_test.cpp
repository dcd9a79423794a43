// The desktop's font: what the desktop tells, and the font of the system that is taken for it.
#include "platform/toolkit/gnustep/DesktopSettings.h"
#include "platform/toolkit/gnustep/SystemFont.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

struct Description {
    const char *text, *families;
};

class FontFamilies : public testing::TestWithParam<Description> {};

TEST_P(FontFamilies, AreWhatStandsBeforeStylesAndSize) {
    EXPECT_EQ(FamiliesOf(GetParam().text), GetParam().families);
}

INSTANTIATE_TEST_SUITE_P(
    Descriptions, FontFamilies,
    testing::Values(Description{"Cantarell 11", "Cantarell"},
                    Description{"Noto Sans,  10", "Noto Sans"},
                    Description{"DejaVu Serif Bold Italic 12.5", "DejaVu Serif"},
                    Description{"Ubuntu Medium", "Ubuntu"},
                    Description{"Inter, Noto Sans Semi-Bold 10px", "Inter, Noto Sans"},
                    Description{"Inter Display 11 @wght=300", "Inter Display"},
                    Description{"Sans", "Sans"}, Description{"Bold 12", ""}, Description{"", ""},
                    Description{" , ", ""}));

bool AnyFont(const std::string & /*name*/) {
    return true;
}

TEST(SystemFont, FamilyOfTheSystem_IsTakenWithItsBoldFont) {
    const SystemFont font = FindSystemFont("URW Gothic 11", AnyFont);
    EXPECT_EQ(font.plain, "URWGothic-Book");
    EXPECT_EQ(font.bold, "URWGothic-Demi");
}

TEST(SystemFont, SecondFamily_IsTakenWhenThereIsNoFirst) {
    EXPECT_EQ(FindSystemFont("No Such Family, URW Gothic 11", AnyFont).plain, "URWGothic-Book");
}

TEST(SystemFont, FamilyWithoutLettersOrUnknown_GivesOneThatCanBeRead) {
    const std::string usual = FindSystemFont("", AnyFont).plain;
    EXPECT_NE(usual, "");
    // Chinese characters only.
    EXPECT_NE(FindSystemFont("Droid Sans Fallback 10", AnyFont).plain, "DroidSansFallback");
    EXPECT_NE(FindSystemFont("Droid Sans Fallback 10", AnyFont).plain, "");
    EXPECT_EQ(FindSystemFont("No Such Family 10", AnyFont).plain, usual);
}

TEST(SystemFont, CharacterThatFontsLack_IsFoundInAnother) {
    EXPECT_NE(FindFontWith(U'\u7d19', AnyFont), "");
    EXPECT_EQ(FindFontWith(U'\U0005ffff', AnyFont), ""); // no character
}

TEST(SystemFont, FontThatAppKitDoesNotKnow_IsLeftOut) {
    const auto isKnown = [](const std::string &name) { return name != "URWGothic-Book"; };
    EXPECT_NE(FindSystemFont("URW Gothic 11", isKnown).plain, "URWGothic-Book");
    EXPECT_EQ(FindSystemFont("", [](const std::string &) { return false; }).plain, "");
}

/// Settings as a desktop writes them: a number, a colour, and a text.
std::string Settings(bool littleEndian, const std::string &font) {
    std::string bytes;
    const auto number = [&](size_t value, int size) {
        for (int i = 0; i < size; ++i)
            bytes += static_cast<char>(value >> 8 * (littleEndian ? i : size - 1 - i) & 0xff);
    };
    const auto text = [&](const std::string &value) {
        bytes += value;
        bytes.append((4 - value.size() % 4) % 4, '\0');
    };
    const auto setting = [&](int kind, const std::string &name) {
        number(static_cast<size_t>(kind), 1);
        number(0, 1);
        number(name.size(), 2);
        text(name);
        number(7, 4);
    };
    number(littleEndian ? 0 : 1, 1);
    bytes.append(3, '\0');
    number(9, 4);
    number(3, 4);
    setting(0, "Xft/DPI");
    number(98304, 4);
    setting(2, "Net/Colour");
    bytes.append(8, '\xff');
    setting(1, "Gtk/FontName");
    number(font.size(), 4);
    text(font);
    return bytes;
}

std::string TextIn(const std::string &bytes, const std::string &name) {
    return TextSetting(reinterpret_cast<const unsigned char *>(bytes.data()), bytes.size(), name);
}

TEST(DesktopSettings, Text_IsReadInEitherByteOrder) {
    for (const bool littleEndian : {true, false}) {
        EXPECT_EQ(TextIn(Settings(littleEndian, "Cantarell 11"), "Gtk/FontName"), "Cantarell 11");
        EXPECT_EQ(TextIn(Settings(littleEndian, ""), "Gtk/FontName"), "");
        EXPECT_EQ(TextIn(Settings(littleEndian, "x"), "Xft/DPI"), ""); // no text
        EXPECT_EQ(TextIn(Settings(littleEndian, "x"), "Gtk/Nothing"), "");
    }
}

TEST(DesktopSettings, CutOffAnywhere_IsNoText) {
    const std::string whole = Settings(true, "Cantarell 11");
    for (size_t length = 0; length < whole.size(); ++length) {
        // A copy of exactly that size, so that reading on would be noticed.
        const std::vector<unsigned char> bytes(whole.begin(),
                                               whole.begin() + static_cast<long>(length));
        EXPECT_EQ(TextSetting(bytes.data(), bytes.size(), "Gtk/FontName"), "") << length;
    }
}

TEST(DesktopSettings, AbsurdCounts_AreNoText) {
    std::string many = Settings(true, "x");
    many.replace(8, 4, 4, '\xff');
    EXPECT_EQ(TextIn(many, "Gtk/Nothing"), "");
    std::string longName = Settings(true, "x");
    longName.replace(14, 2, 2, '\xff');
    EXPECT_EQ(TextIn(longName, "Gtk/FontName"), "");
}

} // namespace
