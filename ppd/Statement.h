/// One statement of a PPD file.
#pragma once

#include <iosfwd>
#include <string>

namespace PPD {

/// Five byte strings in whatever encoding the file has; nothing is converted.
class Statement {
public:
    Statement() = default;
    Statement(std::string mainKeyword, std::string optionKeyword, std::string optionTranslation,
              std::string value, std::string valueTranslation);

    /// With its leading asterisk: "*PageSize".
    const std::string &GetMainKeyword() const { return mMainKeyword; }
    /// The word between the main keyword and the colon or slash; empty without one.
    const std::string &GetOptionKeyword() const { return mOptionKeyword; }
    /// What users are shown for the option: the text between slash and colon, or the keyword.
    const std::string &GetTranslatedOptionKeyword() const;
    /// The value, quotes removed.
    const std::string &GetValue() const { return mValue; }
    const std::string &GetTranslatedValue() const;

private:
    std::string mMainKeyword, mOptionKeyword, mOptionTranslation, mValue, mValueTranslation;
};

/// Writes "main  option  <<translated option>>  value", for diagnostics.
std::ostream &operator<<(std::ostream &stream, const Statement &statement);

} // namespace PPD
