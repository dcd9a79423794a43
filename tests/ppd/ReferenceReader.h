/// A second, independent reading of PPD files, to compare the driver's with.
///
/// Written from the PPD File Format Specification 4.3: the whole file is taken apart once, from
/// front to back, into a list of statements, and the model is looked up in that list. The driver's
/// reader instead searches the file for one keyword at a time. The reader knows the driver's limits
/// on purpose: no symbol values, no *Include, value translations dropped, and a malformed statement
/// ends a list of options.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace reference {

struct Statement {
    std::string keyword, option, translation, value;
    std::string error; ///< what is wrong with it, in the driver's words; empty when nothing is
};

struct Page {
    std::string name, uiName, code;
    double area[4] = {};
};

struct Resolution {
    std::string name, uiName, code;
    double x = 0, y = 0;
};

struct Param {
    int index = 0;
    std::string type;
    double min = 0, max = 0;
};

struct Model {
    std::string refusal; ///< why the file is refused; the rest is empty then
    std::vector<Page> pages;
    int defaultPage = 0;
    std::optional<std::string> customCode;
    std::map<std::string, Param> params;
    double maxMediaWidth = 1000000, maxMediaHeight = 1000000;
    std::vector<Resolution> resolutions;
    int defaultResolution = 0;
    bool colour = false, level2 = false;
};

std::vector<Statement> ReadStatements(const std::string &file);
Model ReadModel(const std::string &file);

} // namespace reference
