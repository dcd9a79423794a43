#include "tests/ppd/ReferenceReader.h"

#include <cstdlib>
#include <sstream>
#include <utility>

namespace reference {
namespace {

/// Takes one statement after the other off a file in memory.
class Scanner {
public:
    explicit Scanner(const std::string &file) : mFile(file) {}

    bool AtEnd() const { return mAt >= mFile.size(); }

    /// The statement at the start of this line, if there is one; moves to the next line.
    std::optional<Statement> Next() {
        const bool statement = At('*') && mAt + 1 < mFile.size() && mFile[mAt + 1] != '%';
        if (!statement) {
            SkipLine();
            return std::nullopt;
        }
        Statement result;
        result.keyword = Until(":/ \t\r\n");
        const size_t line = mAt;
        const bool end = result.keyword == "*End"; // of a value over several lines: has none itself
        if (!end && !Rest(result)) mAt = line;     // a broken statement ends with its line
        SkipLine();
        return result;
    }

private:
    bool At(char c) const { return mAt < mFile.size() && mFile[mAt] == c; }

    std::string Until(const char *stops) {
        const size_t end = std::min(mFile.find_first_of(stops, mAt), mFile.size());
        const size_t begin = std::exchange(mAt, end);
        return mFile.substr(begin, end - begin);
    }

    void SkipWhite() { mAt = std::min(mFile.find_first_not_of(" \t\r\n\v\f", mAt), mFile.size()); }

    void SkipLine() {
        Until("\r\n");
        if (AtEnd()) return;
        const char end = mFile[mAt++];
        if (At(end == '\n' ? '\r' : '\n')) ++mAt;
    }

    bool Fail(Statement &statement, const char *error) {
        statement.error = statement.keyword + " " + error;
        return false;
    }

    /// What follows the keyword. False when it is malformed.
    bool Rest(Statement &statement) {
        if (!At(':')) {
            ++mAt;
            SkipWhite();
            statement.option = Until(":/ \t\r\n");
            if (At('/')) {
                ++mAt;
                const std::string raw = Until(":\r\n");
                if (!At(':')) return Fail(statement, "translation must not contain newline");
                if (!DecodeHex(raw, statement.translation))
                    return Fail(statement, "badly formed hex string");
            } else if (!At(':')) {
                return Fail(statement, "unrecognised keyword terminator");
            }
        }
        ++mAt;
        return Value(statement);
    }

    bool Value(Statement &statement) {
        SkipWhite();
        if (At('^')) return Fail(statement, "symbol value not supported");
        if (!At('"')) {
            statement.value = Until("\r\n");
            statement.value.erase(statement.value.find_last_not_of(" \t") + 1);
            return true;
        }
        ++mAt;
        const std::string raw = Until("\"");
        ++mAt;
        const bool code = !statement.option.empty() && statement.keyword.rfind("*JCL", 0) != 0;
        if (code) {
            statement.value = raw;
        } else if (!DecodeHex(raw, statement.value)) {
            return Fail(statement, "badly formed hex string");
        }
        return true;
    }

    static bool DecodeHex(const std::string &raw, std::string &text) {
        for (size_t i = 0; i < raw.size(); ++i) {
            if (raw[i] != '<') {
                text += raw[i];
                continue;
            }
            const size_t end = raw.find('>', i);
            if (end == std::string::npos || (end - i) % 2 == 0) return false;
            const std::string digits = raw.substr(i + 1, end - i - 1);
            if (digits.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
                return false;
            for (size_t d = 0; d < digits.size(); d += 2)
                text += static_cast<char>(std::stoi(digits.substr(d, 2), nullptr, 16));
            i = end;
        }
        return true;
    }

    const std::string &mFile;
    size_t mAt = 0;
};

using Statements = std::vector<Statement>;

const Statement *First(const Statements &all, const std::string &keyword) {
    for (const Statement &s : all)
        if (s.keyword == keyword) return &s;
    return nullptr;
}

/// The value of a statement that must be there; the refusal when it is missing or malformed.
std::string Required(const Statements &all, const std::string &keyword, std::string &refusal) {
    const Statement *statement = First(all, keyword);
    if (!statement && refusal.empty()) refusal = keyword + " not found";
    if (statement && refusal.empty()) refusal = statement->error;
    return statement ? statement->value : "";
}

std::string Optional(const Statements &all, const std::string &keyword, const char *otherwise) {
    const Statement *statement = First(all, keyword);
    return statement && statement->error.empty() ? statement->value : otherwise;
}

/// The options of a keyword, up to the first malformed one; later ones replace earlier ones.
std::map<std::string, Statement> Options(const Statements &all, const std::string &keyword) {
    std::map<std::string, Statement> options;
    for (const Statement &s : all) {
        if (s.keyword != keyword) continue;
        if (!s.error.empty()) break;
        options[s.option] = s;
    }
    return options;
}

std::string Shown(const Statement &s) {
    return s.translation.empty() ? s.option : s.translation;
}

std::istringstream Stream(const std::string &text) {
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    return stream;
}

void ReadPages(const Statements &all, Model &model) {
    auto areas = Options(all, "*ImageableArea");
    for (const auto &[name, size] : Options(all, "*PageSize")) {
        Page page{name, Shown(size), size.value, {}};
        std::istringstream stream = Stream(areas[name].value);
        stream >> page.area[0] >> page.area[1] >> page.area[2] >> page.area[3];
        model.pages.push_back(page);
    }
    const std::string preset = Required(all, "*DefaultPageSize", model.refusal);
    for (size_t i = 0; i < model.pages.size(); ++i)
        if (model.pages[i].name == preset) model.defaultPage = static_cast<int>(i);
}

void ReadCustomPages(const Statements &all, Model &model) {
    const Statement *custom = First(all, "*CustomPageSize");
    if (!custom || !custom->error.empty() || custom->option != "True") return;
    model.customCode = custom->value;
    model.maxMediaWidth = std::atof(Optional(all, "*MaxMediaWidth", "1000000").c_str());
    model.maxMediaHeight = std::atof(Optional(all, "*MaxMediaHeight", "1000000").c_str());
    for (const auto &[name, entry] : Options(all, "*ParamCustomPageSize")) {
        Param &param = model.params[name];
        Stream(entry.value) >> param.index >> param.type >> param.min >> param.max;
    }
}

Resolution MakeResolution(const std::string &name, const std::string &uiName,
                          const std::string &code) {
    Resolution resolution{name, uiName, code, 0, 0};
    // Letters may not reach the stream: some would be taken for part of a number.
    const size_t letters = std::min(name.find_first_not_of("0123456789."), name.size());
    resolution.x = resolution.y = std::atof(name.substr(0, letters).c_str());
    if (name[letters] == 'x') {
        const std::string second = name.substr(letters + 1);
        const size_t digits = std::min(second.find_first_not_of("0123456789."), second.size());
        resolution.y = std::atof(second.substr(0, digits).c_str());
    }
    return resolution;
}

void ReadResolutions(const Statements &all, Model &model) {
    for (const auto &[name, entry] : Options(all, "*Resolution"))
        model.resolutions.push_back(MakeResolution(name, Shown(entry), entry.value));
    const std::string preset = Required(all, "*DefaultResolution", model.refusal);
    if (model.resolutions.empty()) model.resolutions.push_back(MakeResolution(preset, preset, ""));
    for (size_t i = 0; i < model.resolutions.size(); ++i)
        if (model.resolutions[i].name == preset) model.defaultResolution = static_cast<int>(i);
}

} // namespace

Statements ReadStatements(const std::string &file) {
    Statements statements;
    Scanner scanner(file);
    while (!scanner.AtEnd())
        if (auto statement = scanner.Next()) statements.push_back(std::move(*statement));
    return statements;
}

Model ReadModel(const std::string &file) {
    Model model;
    const bool signature =
        file.rfind("*PPD-Adobe", 0) == 0 &&
        (file.size() == 10 || std::string(":/ \t\r\n").find(file[10]) != std::string::npos);
    if (!signature) {
        model.refusal = "Not a PPD file";
        return model;
    }
    const Statements all = ReadStatements(file);
    ReadPages(all, model);
    ReadCustomPages(all, model);
    ReadResolutions(all, model);
    model.colour = Optional(all, "*ColorDevice", "") == "True";
    model.level2 = std::atoi(Optional(all, "*LanguageLevel", "0").c_str()) > 1;
    return model;
}

} // namespace reference
