/// A small, search-driven reader of PostScript Printer Description files (Adobe, PPD File Format
/// Specification 4.3).
#pragma once

#include "ppd/InputFile.h"
#include "ppd/Statement.h"
#include "support/CFRef.h"

#include <CoreFoundation/CoreFoundation.h>
#include <map>
#include <string>

namespace PPD {

/// Keeps nothing of the file but the statement at hand: each query scans for the lines whose first
/// token is the wanted main keyword and takes only those apart. Every failure is a
/// PPD::ParserError. One thread at a time.
class MiniParser {
public:
    /// Retains `url`. Throws "Can't get path to file", or "Not a PPD file" when the file is no
    /// readable regular file or does not begin with "*PPD-Adobe" and a separator.
    explicit MiniParser(CFURLRef url);
    /// An independent reader of the same file, at its beginning. Throws like the other constructor.
    MiniParser(const MiniParser &other);
    MiniParser &operator=(const MiniParser &) = delete;
    ~MiniParser() = default;

    CFURLRef URL() const { return mURL.Get(); } ///< not retained

    void Rewind() { mFile.Rewind(); }

    /// Throws "Not a PPD file" when some of the file could not be read. The queries below take what
    /// they have then for the whole, so it has to be asked after them.
    void CheckWasReadWhole() const;

    /// The file's first statement with that main keyword. Throws the keyword followed by
    /// " not found", or by what is wrong with the statement.
    Statement GetStatement(const std::string &mainKeyword);
    /// The next such statement after the one read last. Throws like GetStatement.
    Statement GetNextStatement(const std::string &mainKeyword);
    /// The first statement with both keywords, compared byte for byte. Throws like GetStatement,
    /// also for a malformed statement with that main keyword on the way.
    Statement GetStatement(const std::string &mainKeyword, const std::string &optionKeyword);
    /// All statements with that main keyword by their option keyword; of equal ones the last. Ends
    /// without an error at the first malformed one. Throws no ParserError.
    std::map<std::string, Statement> GetOptionEntry(const std::string &mainKeyword);

    /// Whether the value is exactly "True"; the default when the statement is missing or malformed.
    bool BooleanKeyword(const std::string &mainKeyword, bool defaultValue);
    /// The number that the value begins with, 0 without one; the default as above.
    int IntKeyword(const std::string &mainKeyword, int defaultValue);
    double RealKeyword(const std::string &mainKeyword, double defaultValue);

private:
    void Init();
    void ReadToken(std::string &token);
    void SkipWhiteSpace();
    void SkipToEndOfLine();
    void FindKeyword(const std::string &mainKeyword);
    int ReadOption(std::string &option);
    std::string ReadTranslation(const std::string &mainKeyword);
    std::string ReadValue(const std::string &mainKeyword, bool decodesHex);
    std::string ReadQuotedValue(const std::string &mainKeyword, bool decodesHex);
    std::string ReadUnquotedValue();
    void ReadHexSubstring(const std::string &mainKeyword, std::string &text);

    CFRef<CFURLRef> mURL;
    InputFile mFile;
};

} // namespace PPD
