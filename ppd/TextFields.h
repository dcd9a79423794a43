/// Reading numbers and words out of PPD values, the same in every locale.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace PPD {

/// The six white-space characters of ASCII.
constexpr bool IsWhiteSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// The number that the text begins with, after white space, as C's atof reads it in the "C" locale;
/// 0 without one.
double ToNumber(const std::string &text);

/// Takes fields off the front of a text, each after optional white space. The first field that
/// cannot be read ends it: that one and all later ones leave their variable as it is.
class FieldReader {
public:
    explicit FieldReader(std::string_view text) : mRest(text) {}

    /// A decimal number with optional sign, fraction and exponent.
    bool ReadNumber(double &number);
    /// Digits with an optional decimal point, without sign or exponent: "1200x600dpi" is a number,
    /// the letter x and another number with more letters behind it.
    bool ReadPlainNumber(double &number);
    /// A decimal number with optional sign that fits into 32 bits.
    bool ReadInteger(int32_t &number);
    /// Characters up to the next white space.
    bool ReadWord(std::string &word);
    bool ReadCharacter(char &character);

private:
    enum class Form { Plain, Signed };
    bool Convert(Form form, double &number);
    size_t SkipSign(size_t at) const;
    size_t SkipDigits(size_t at) const;
    size_t NumberLength(Form form) const;
    void SkipWhiteSpace();
    std::string Take(size_t count);

    std::string_view mRest;
    bool mFailed = false;
};

} // namespace PPD
