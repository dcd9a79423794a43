// A look at XML text before it is handed to a reader that runs out of stack on deep nesting.
#pragma once
#include <string_view>

/// Does the text look like an XML property list, without entities of its own, whose elements are
/// nested at most `limit` deep?
bool IsShallowPropertyListXML(std::string_view text, int limit);
