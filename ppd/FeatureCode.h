/// The printer's own code for something that a document asks of it.
#pragma once

#include <string>

/// What the code selects. Where in a document it stands is the document's business.
enum class FeatureKind { Page, Resolution };

struct FeatureCode {
    FeatureKind kind;
    std::string text;
};
