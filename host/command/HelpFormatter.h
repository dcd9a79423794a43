/// How zelprint shows its options: within 80 columns.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

class HelpFormatter : public CLI::Formatter {
public:
    [[nodiscard]] std::string make_option(const CLI::Option *option,
                                          bool isPositional) const override;
    [[nodiscard]] std::string make_subcommand(const CLI::App *command) const override;
};
