#include "host/command/HelpFormatter.h"

#include <sstream>

namespace {

constexpr size_t kWidth = 80;
/// Where the texts begin.
constexpr size_t kColumn = 29;

/// CLI11 shows what a flag's other name stands for: "--ps{false}".
std::string WithoutDefaults(std::string names) {
    for (size_t open = names.find('{'); open != std::string::npos; open = names.find('{'))
        names.erase(open, names.find('}', open) + 1 - open);
    return names;
}

/// A name and a text beside it, which goes on in its own column.
std::string Entry(const std::string &name, const std::string &text) {
    std::string entry = "  " + name;
    size_t column = entry.size();
    const auto begin = [&](size_t from) {
        entry.append(kColumn - from, ' ');
        column = kColumn;
    };
    const auto next = [&] {
        entry += "\n";
        begin(0);
    };
    if (column + 1 > kColumn)
        next();
    else
        begin(column);
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        if (column > kColumn && column + 1 + word.size() >= kWidth) next();
        if (column > kColumn) entry += " ";
        entry += word;
        column += word.size() + (column > kColumn ? 1 : 0);
    }
    return entry + "\n";
}

} // namespace

std::string HelpFormatter::make_option(const CLI::Option *option, bool isPositional) const {
    return Entry(WithoutDefaults(make_option_name(option, isPositional)) + make_option_opts(option),
                 make_option_desc(option));
}

std::string HelpFormatter::make_subcommand(const CLI::App *command) const {
    return Entry(command->get_name(), command->get_description());
}
