#include "host/job/Decimal.h"

#include <locale>
#include <sstream>

// Not std::from_chars: not every library of C++ has it for fractions.
bool ReadDecimal(const std::string &text, size_t &at, double &number) {
    size_t end = text.find_first_not_of("0123456789", at);
    if (end != std::string::npos && text[end] == '.')
        end = text.find_first_not_of("0123456789", end + 1);
    if (end == std::string::npos) end = text.size();
    std::istringstream stream(text.substr(at, end - at));
    stream.imbue(std::locale::classic());
    double value = 0;
    if (!(stream >> value)) return false;
    number = value;
    at = end;
    return true;
}
