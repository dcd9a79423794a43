#include "ppd/TextFields.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <locale.h>
#if __has_include(<xlocale.h>)
#include <xlocale.h> // where some systems keep strtod_l
#endif

namespace PPD {
namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

} // namespace

double ToNumber(const std::string &text) {
    // Never freed: every number of the process is read with it.
    static const locale_t cLocale = newlocale(LC_ALL_MASK, "C", nullptr);
    return strtod_l(text.c_str(), nullptr, cLocale);
}

void FieldReader::SkipWhiteSpace() {
    const auto first = std::find_if_not(mRest.begin(), mRest.end(), IsWhiteSpace);
    mRest.remove_prefix(static_cast<size_t>(first - mRest.begin()));
}

std::string FieldReader::Take(size_t count) {
    std::string taken(mRest.substr(0, count));
    mRest.remove_prefix(taken.size());
    return taken;
}

size_t FieldReader::SkipSign(size_t at) const {
    return at + (at < mRest.size() && (mRest[at] == '+' || mRest[at] == '-'));
}

size_t FieldReader::SkipDigits(size_t at) const {
    while (at < mRest.size() && IsDigit(mRest[at]))
        ++at;
    return at;
}

/// Length of the number at the front, 0 without one. An exponent without digits spoils the number:
/// a C++ stream reads it so, and printer files were checked with those.
size_t FieldReader::NumberLength(Form form) const {
    const size_t first = form == Form::Signed ? SkipSign(0) : 0;
    size_t end = SkipDigits(first);
    size_t digits = end - first;
    if (end < mRest.size() && mRest[end] == '.') {
        const size_t fraction = end + 1;
        end = SkipDigits(fraction);
        digits += end - fraction;
    }
    if (digits == 0) return 0;
    const bool hasExponent = end < mRest.size() && (mRest[end] == 'e' || mRest[end] == 'E');
    if (form == Form::Plain || !hasExponent) return end;
    const size_t exponent = SkipSign(end + 1);
    end = SkipDigits(exponent);
    return end == exponent ? 0 : end;
}

bool FieldReader::Convert(Form form, double &number) {
    if (mFailed) return false;
    SkipWhiteSpace();
    const size_t length = NumberLength(form);
    const double value = length == 0 ? HUGE_VAL : ToNumber(Take(length));
    mFailed = !std::isfinite(value);
    if (!mFailed) number = value;
    return !mFailed;
}

bool FieldReader::ReadNumber(double &number) {
    return Convert(Form::Signed, number);
}

bool FieldReader::ReadPlainNumber(double &number) {
    return Convert(Form::Plain, number);
}

bool FieldReader::ReadInteger(int32_t &number) {
    if (mFailed) return false;
    SkipWhiteSpace();
    const size_t first = SkipSign(0);
    const size_t end = SkipDigits(first);
    // As a double, every integer of 32 bits is exact, and longer ones are out of range.
    const double value = end == first ? HUGE_VAL : ToNumber(Take(end));
    mFailed =
        value < std::numeric_limits<int32_t>::min() || value > std::numeric_limits<int32_t>::max();
    if (!mFailed) number = static_cast<int32_t>(value);
    return !mFailed;
}

bool FieldReader::ReadWord(std::string &word) {
    if (mFailed) return false;
    SkipWhiteSpace();
    const auto end = std::find_if(mRest.begin(), mRest.end(), IsWhiteSpace);
    mFailed = end == mRest.begin();
    if (!mFailed) word = Take(static_cast<size_t>(end - mRest.begin()));
    return !mFailed;
}

bool FieldReader::ReadCharacter(char &character) {
    if (mFailed) return false;
    SkipWhiteSpace();
    mFailed = mRest.empty();
    if (mFailed) return false;
    character = mRest.front();
    mRest.remove_prefix(1);
    return true;
}

} // namespace PPD
