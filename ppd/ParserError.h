/// The one exception type of the PPD reader.
#pragma once

#include <string>
#include <utility>

namespace PPD {

/// Carries a message for the user. Thrown by value, caught by reference; deliberately not a
/// std::exception, so that a handler for those never takes a refused PPD file for a defect.
class ParserError {
public:
    explicit ParserError(std::string message) : mMessage(std::move(message)) {}
    const std::string &ErrorMessage() const { return mMessage; }

private:
    std::string mMessage;
};

} // namespace PPD
