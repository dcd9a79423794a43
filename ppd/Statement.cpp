#include "ppd/Statement.h"

#include <ostream>
#include <utility>

namespace PPD {

Statement::Statement(std::string mainKeyword, std::string optionKeyword,
                     std::string optionTranslation, std::string value, std::string valueTranslation)
    : mMainKeyword(std::move(mainKeyword)), mOptionKeyword(std::move(optionKeyword)),
      mOptionTranslation(std::move(optionTranslation)), mValue(std::move(value)),
      mValueTranslation(std::move(valueTranslation)) {}

const std::string &Statement::GetTranslatedOptionKeyword() const {
    return mOptionTranslation.empty() ? mOptionKeyword : mOptionTranslation;
}

const std::string &Statement::GetTranslatedValue() const {
    return mValueTranslation.empty() ? mValue : mValueTranslation;
}

std::ostream &operator<<(std::ostream &stream, const Statement &statement) {
    return stream << statement.GetMainKeyword() << "  " << statement.GetOptionKeyword() << "  <<"
                  << statement.GetTranslatedOptionKeyword() << ">>  " << statement.GetValue();
}

} // namespace PPD
