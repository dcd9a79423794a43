/// The kinds of options that zelprint and its subcommands have.
#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <vector>

/// A script's variable that is empty by mistake must not print to another printer or folder than
/// was meant.
[[nodiscard]] CLI::Validator Filled();

/// An option with a value that is not empty; `what` stands for it in the help.
template <typename T>
CLI::Option *Choice(CLI::App &app, const char *names, T &value, const char *what,
                    const char *help) {
    return app.add_option(names, value, help)->type_name(what)->check(Filled());
}

/// Replaces one of `words`, in any case, by its index; says what is wrong with any other text.
[[nodiscard]] CLI::Validator OneOf(std::vector<std::string> words);

/// What stands for one of `words` in the help: "cmyk|gray|rgb".
[[nodiscard]] std::string Alternatives(const std::vector<std::string> &words);

/// An option whose value becomes the index of the word that is given.
template <typename T>
CLI::Option *WordChoice(CLI::App &app, const char *names, T &value,
                        const std::vector<std::string> &words, const char *help) {
    return app.add_option(names, value, help)
        ->transform(OneOf(words))
        ->type_name(Alternatives(words));
}

/// The colour spaces of documents in the order of kZELColourSpaceCMYK and so on, and the rendering
/// intents in that of ICC profiles.
[[nodiscard]] const std::vector<std::string> &ColourSpaceWords();
[[nodiscard]] const std::vector<std::string> &IntentWords();

/// A flag and its opposite ("--yes,!--no"), or neither: CLI11 would give a flag that is not there
/// the value false.
void Switch(CLI::App &app, const char *names, std::optional<bool> &value, const char *help);
