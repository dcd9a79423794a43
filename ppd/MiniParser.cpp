#include "ppd/MiniParser.h"

#include "ppd/ParserError.h"
#include "ppd/TextFields.h"
#include "support/CFText.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>

namespace PPD {
namespace {

constexpr const char *kSignature = "*PPD-Adobe";
constexpr const char *kNotAPPDFile = "Not a PPD file";
constexpr std::string_view kJobControlPrefix = "*JCL";
constexpr int kTokenReads = 256; ///< reads per keyword token; the last one never adds a character

constexpr auto kIsSeparator = [] {
    std::array<bool, 256> table{};
    for (const char c : std::string_view(":/\r\n\t "))
        table[static_cast<unsigned char>(c)] = true;
    return table;
}();

bool IsLineEnd(int c) {
    return c == '\n' || c == '\r';
}

/// -1 for anything but a 7-bit hexadecimal digit.
int HexDigit(int c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

std::string PathOf(CFURLRef url) {
    const CFRef<CFStringRef> path(url ? CFURLCopyFileSystemPath(url, kCFURLPOSIXPathStyle)
                                      : nullptr);
    const auto text = UTF8Text(path.Get());
    if (!text) throw ParserError("Can't get path to file");
    return *text;
}

/// Steps over bytes up to the first that `isStop` accepts, which stays unread, or to the end;
/// appends them to `text`, if there is one.
template <class IsStop>
void TakeUntil(InputFile &file, IsStop isStop, std::string *text) {
    for (auto bytes = file.Pending(); !bytes.empty(); bytes = file.Pending()) {
        const auto stop = std::find_if(bytes.begin(), bytes.end(), isStop);
        const auto count = static_cast<size_t>(stop - bytes.begin());
        if (text) text->append(bytes.data(), count);
        file.Consume(count);
        if (stop != bytes.end()) return;
    }
}

} // namespace

MiniParser::MiniParser(CFURLRef url)
    : mURL(CFRef<CFURLRef>::Retain(url)), mFile(PathOf(mURL.Get())) {
    Init();
}

MiniParser::MiniParser(const MiniParser &other) : mURL(other.mURL), mFile(PathOf(mURL.Get())) {
    Init();
}

void MiniParser::Init() {
    std::string token;
    ReadToken(token);
    if (token != kSignature) throw ParserError(kNotAPPDFile);
    Rewind();
}

void MiniParser::CheckWasReadWhole() const {
    if (mFile.Failed()) throw ParserError(kNotAPPDFile);
}

void MiniParser::ReadToken(std::string &token) {
    token.clear();
    for (int read = 1; read < kTokenReads; ++read) {
        const int c = mFile.Peek();
        if (c == InputFile::kEnd || kIsSeparator[static_cast<size_t>(c)]) return;
        token.push_back(static_cast<char>(c));
        mFile.Consume(1);
    }
    // The last read ends the token and its character is lost, even a separator: a main keyword of
    // more than 255 characters never matches.
    (void)mFile.Get();
}

void MiniParser::SkipWhiteSpace() {
    TakeUntil(
        mFile, [](char c) { return !IsWhiteSpace(c); }, nullptr);
}

void MiniParser::SkipToEndOfLine() {
    TakeUntil(mFile, IsLineEnd, nullptr);
    const int first = mFile.Get();
    if (first == InputFile::kEnd) return;
    const int second = mFile.Peek();
    if (IsLineEnd(second) && second != first) (void)mFile.Get();
}

void MiniParser::FindKeyword(const std::string &mainKeyword) {
    std::string token;
    token.reserve(kTokenReads);
    for (;;) {
        if (mFile.ReachedEnd()) throw ParserError(mainKeyword + " not found");
        ReadToken(token);
        if (token == mainKeyword) return;
        SkipToEndOfLine();
    }
}

/// Returns the separator that ended the option, or kEnd.
int MiniParser::ReadOption(std::string &option) {
    SkipWhiteSpace();
    TakeUntil(
        mFile, [](char c) { return kIsSeparator[static_cast<unsigned char>(c)]; }, &option);
    return mFile.Get();
}

std::string MiniParser::ReadTranslation(const std::string &mainKeyword) {
    std::string translation;
    for (;;) {
        TakeUntil(
            mFile, [](char c) { return c == ':' || c == '<' || IsLineEnd(c); }, &translation);
        const int c = mFile.Get();
        if (c == ':') return translation;
        if (c != '<') throw ParserError(mainKeyword + " translation must not contain newline");
        ReadHexSubstring(mainKeyword, translation);
    }
}

void MiniParser::ReadHexSubstring(const std::string &mainKeyword, std::string &text) {
    for (;;) {
        const int first = mFile.Get();
        if (first == '>') return;
        const int high = HexDigit(first);
        const int low = high < 0 ? -1 : HexDigit(mFile.Get());
        if (low < 0) throw ParserError(mainKeyword + " badly formed hex string");
        text.push_back(static_cast<char>(high * 16 + low));
    }
}

std::string MiniParser::ReadQuotedValue(const std::string &mainKeyword, bool decodesHex) {
    std::string value;
    for (;;) {
        TakeUntil(
            mFile, [decodesHex](char c) { return c == '"' || (decodesHex && c == '<'); }, &value);
        if (mFile.Get() != '<') return value;
        ReadHexSubstring(mainKeyword, value);
    }
}

std::string MiniParser::ReadUnquotedValue() {
    std::string value;
    TakeUntil(mFile, IsLineEnd, &value);
    value.erase(value.find_last_not_of(" \t\n\r") + 1);
    return value;
}

std::string MiniParser::ReadValue(const std::string &mainKeyword, bool decodesHex) {
    SkipWhiteSpace();
    switch (mFile.Peek()) {
        case '"':
            mFile.Consume(1);
            return ReadQuotedValue(mainKeyword, decodesHex);
        case '^':
            mFile.Consume(1);
            throw ParserError(mainKeyword + " symbol value not supported");
        default:
            return ReadUnquotedValue();
    }
}

Statement MiniParser::GetNextStatement(const std::string &mainKeyword) {
    FindKeyword(mainKeyword);
    std::string option;
    std::string translation;
    int separator = mFile.Get();
    if (separator != ':') {
        separator = ReadOption(option);
        if (separator == '/') {
            translation = ReadTranslation(mainKeyword);
        } else if (separator != ':') {
            throw ParserError(mainKeyword + " unrecognised keyword terminator");
        }
    }
    // An option's value is PostScript code, where "<" stands for itself, except in job control.
    const bool decodesHex =
        option.empty() || std::string_view(mainKeyword).substr(0, 4) == kJobControlPrefix;
    std::string value = ReadValue(mainKeyword, decodesHex);
    SkipToEndOfLine();
    return {mainKeyword, std::move(option), std::move(translation), std::move(value), {}};
}

Statement MiniParser::GetStatement(const std::string &mainKeyword) {
    Rewind();
    return GetNextStatement(mainKeyword);
}

Statement MiniParser::GetStatement(const std::string &mainKeyword,
                                   const std::string &optionKeyword) {
    Rewind();
    for (;;) {
        Statement statement = GetNextStatement(mainKeyword);
        if (statement.GetOptionKeyword() == optionKeyword) return statement;
    }
}

std::map<std::string, Statement> MiniParser::GetOptionEntry(const std::string &mainKeyword) {
    std::map<std::string, Statement> entries;
    Rewind();
    try {
        for (;;) {
            Statement statement = GetNextStatement(mainKeyword);
            const std::string option = statement.GetOptionKeyword();
            entries.insert_or_assign(option, std::move(statement));
        }
    } catch (const ParserError &) {
        return entries; // the end of the file, or of what can be understood
    }
}

bool MiniParser::BooleanKeyword(const std::string &mainKeyword, bool defaultValue) {
    try {
        return GetStatement(mainKeyword).GetValue() == "True";
    } catch (...) {
        return defaultValue;
    }
}

int MiniParser::IntKeyword(const std::string &mainKeyword, int defaultValue) {
    try {
        return std::atoi(GetStatement(mainKeyword).GetValue().c_str());
    } catch (...) {
        return defaultValue;
    }
}

double MiniParser::RealKeyword(const std::string &mainKeyword, double defaultValue) {
    try {
        return ToNumber(GetStatement(mainKeyword).GetValue());
    } catch (...) {
        return defaultValue;
    }
}

} // namespace PPD
