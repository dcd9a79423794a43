#include "ppd/Statement.h"

#include "ppd/ParserError.h"

#include <gtest/gtest.h>
#include <sstream>
#include <type_traits>

using PPD::Statement;

TEST(Statement, Default_IsEmpty) {
    const Statement s;
    EXPECT_EQ(s.GetMainKeyword() + s.GetOptionKeyword() + s.GetTranslatedOptionKeyword() +
                  s.GetValue() + s.GetTranslatedValue(),
              "");
}

TEST(Statement, Translations_StandInForWhatTheyTranslate) {
    const Statement both("*M", "o", "O!", "v", "V!");
    EXPECT_EQ(both.GetTranslatedOptionKeyword(), "O!");
    EXPECT_EQ(both.GetTranslatedValue(), "V!");
    const Statement none("*M", "o", "", "v", "");
    EXPECT_EQ(none.GetTranslatedOptionKeyword(), "o");
    EXPECT_EQ(none.GetTranslatedValue(), "v");
}

TEST(Statement, Output_IsOneDiagnosticLine) {
    std::ostringstream stream;
    stream << Statement("*PageSize", "A4", "ISO A4", "code", "");
    EXPECT_EQ(stream.str(), "*PageSize  A4  <<ISO A4>>  code");
}

TEST(Statement, ParserError_IsNoStandardException) {
    EXPECT_FALSE((std::is_base_of_v<std::exception, PPD::ParserError>));
    EXPECT_EQ(PPD::ParserError("text").ErrorMessage(), "text");
}
