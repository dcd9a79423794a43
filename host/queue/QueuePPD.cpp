#include "host/queue/QueuePPD.h"

#include "host/queue/QueueOptions.h"
#include "host/terminal/ExitStatus.h"
#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>

namespace {

using nlohmann::ordered_json;

// Limits of the PPD format, in bytes.
constexpr size_t kLongestOption = 40;
constexpr size_t kLongestTranslation = 80;

/// A choice of an option as people read it, in both languages.
struct Choice {
    std::string key, english, german;
};

/// Two decimals at most: as exact as a PPD file needs.
std::string Number(const ordered_json &value) {
    char text[64];
    (void)std::snprintf(text, sizeof text, "%.2f", value.get<double>());
    std::string number = text;
    number.erase(number.find_last_not_of('0') + 1);
    if (number.back() == '.') number.pop_back();
    return number == "-0" ? "0" : number;
}

/// May it stand behind a keyword?
bool IsOptionKeyword(const std::string &name) {
    return !name.empty() && name.size() <= kLongestOption &&
           std::all_of(name.begin(), name.end(),
                       [](char c) { return c > ' ' && c <= '~' && c != ':' && c != '/'; });
}

/// Text that may stand as a translation: no character that ends or encodes one.
std::string Translation(const std::string &utf8) {
    std::string text;
    for (const char c : utf8)
        text +=
            (static_cast<unsigned char>(c) < ' ' || c == ':' || c == '/' || c == '<' || c == '>')
                ? ' '
                : c;
    text.erase(0, text.find_first_not_of(' '));
    if (text.size() > kLongestTranslation) text.resize(kLongestTranslation);
    while (!text.empty() && (text.back() & 0xC0) == 0x80 && text.size() == kLongestTranslation)
        text.pop_back();
    return text;
}

/// The same in ASCII, for the base language: other languages are translations of their own.
std::string ASCIITranslation(const std::string &utf8, const std::string &otherwise) {
    std::string text;
    for (const char c : Translation(utf8)) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80)
            text += c;
        else if ((byte & 0xC0) != 0x80)
            text += '?';
    }
    return text.find_first_not_of("? ") == std::string::npos ? otherwise : text;
}

class PPDMaker {
public:
    PPDMaker(const ordered_json &printer, const QueuePPDOptions &options)
        : mPrinter(printer), mOptions(options) {
        mPages = Usable(printer["pages"]);
        mResolutions = Usable(printer["resolutions"]);
        if (mPages.empty() || mResolutions.empty())
            throw HostError(ExitStatus::Input, kAboutPrinter,
                            "the printer has no page or no resolution that a print queue can name; "
                            "see zelprint printer-info");
    }

    std::string Make() {
        Header();
        Pages();
        CustomPages();
        Resolutions();
        DocumentChoices();
        Line("*DefaultFont: Courier");
        Line("*Font Courier: Standard \"(001.000)\" Standard ROM");
        return mText + mTranslations;
    }

private:
    const ordered_json &mPrinter;
    const QueuePPDOptions &mOptions;
    std::vector<ordered_json> mPages, mResolutions;
    std::string mText, mTranslations;

    static std::vector<ordered_json> Usable(const ordered_json &list) {
        std::vector<ordered_json> usable;
        for (const ordered_json &item : list)
            if (IsOptionKeyword(item["name"])) usable.push_back(item);
        return usable;
    }

    void Line(const std::string &line) { mText += line + "\n"; }

    /// A value in quotation marks; one of several lines needs an end.
    void Value(const std::string &keyword, const std::string &value) {
        Line(keyword + ": \"" + value + "\"");
        if (value.find_first_of("\r\n") != std::string::npos) Line("*End");
    }

    /// English is a translation too: only there may a name hold more than ASCII.
    void Translate(const std::string &what, const std::string &english, const std::string &german) {
        mTranslations.append("*en.").append(what) += "/" + Translation(english) + ": \"\"\n";
        mTranslations.append("*de.").append(what) += "/" + Translation(german) + ": \"\"\n";
    }

    [[nodiscard]] bool IsColour() const { return mPrinter["colour"].get<bool>(); }

    [[nodiscard]] std::string Title() const {
        const std::string name =
            mOptions.info.empty() ? mPrinter["name"].get<std::string>() : mOptions.info;
        std::string title = ASCIITranslation(name, "PostScript printer");
        std::replace(title.begin(), title.end(), '"', '\'');
        return title.substr(0, 60);
    }

    void Header() {
        Line("*PPD-Adobe: \"4.3\"");
        Line(
            "*% Made by zelprint from the printer's own file; make it anew instead of editing it.");
        for (const char *line :
             {"*FormatVersion: \"4.3\"", "*FileVersion: \"1.0\"", "*LanguageVersion: English",
              "*LanguageEncoding: ISOLatin1", "*cupsLanguages: \"de en\"",
              "*PCFileName: \"ZELQUEUE.PPD\"", "*Manufacturer: \"ZEL\"",
              "*Product: \"(PostScript)\"", "*PSVersion: \"(3010.000) 0\""})
            Line(line);
        Value("*ModelName", "ZEL " + Title());
        Value("*ShortNickName", Title().substr(0, 31));
        Value("*NickName", Title() + " (hot folder)");
        Line("*LanguageLevel: \"2\"");
        Line(std::string("*ColorDevice: ") + (IsColour() ? "True" : "False"));
        Line(std::string("*DefaultColorSpace: ") + (IsColour() ? "CMYK" : "Gray"));
        for (const char *line :
             {"*FileSystem: False", "*Throughput: \"1\"", "*TTRasterizer: Type42",
              // The last word tells the filters that pages are counted by them.
              "*cupsFilter2: \"application/vnd.cups-pdf application/pdf 0 -\"",
              "*cupsFilter2: \"image/tiff image/tiff 0 -\"",
              "*cupsFilter2: \"image/jpeg image/jpeg 0 -\"",
              "*cupsFilter2: \"image/png image/png 0 -\"", "*cupsManualCopies: True",
              "*cupsSingleFile: True", "*cupsVersion: 2.4"})
            Line(line);
    }

    /// The name of the item that the printer takes by itself.
    [[nodiscard]] std::string Default(const char *list, const char *index,
                                      const std::vector<ordered_json> &usable) const {
        const size_t at = mPrinter[index].get<size_t>();
        const ordered_json &all = mPrinter[list];
        const std::string name = at < all.size() ? all[at]["name"].get<std::string>() : "";
        return IsOptionKeyword(name) ? name : usable.front()["name"].get<std::string>();
    }

    void OpenUI(const std::string &keyword, const std::string &english, const std::string &german,
                int order, const std::string &chosen) {
        Line("*OpenUI *" + keyword + "/" + english + ": PickOne");
        Line("*OrderDependency: " + std::to_string(order) + " AnySetup *" + keyword);
        Line("*Default" + keyword + ": " + chosen);
        Translate("Translation " + keyword, english, german);
    }

    /// The printer's choices of `keyword`, with its code.
    void CodeChoices(const std::string &keyword, const std::vector<ordered_json> &items) {
        for (const ordered_json &item : items) {
            const std::string name = item["name"];
            const std::string shown = item["ui_name"];
            std::string choice = keyword;
            choice.append(" ").append(name);
            const std::string title = shown.empty() ? name : shown;
            Translate(choice, title, title);
            choice.insert(0, "*").append("/").append(ASCIITranslation(shown, name));
            Value(choice, item["postscript"]);
        }
        Line("*CloseUI: *" + keyword);
    }

    void Pages() {
        const std::string chosen = Default("pages", "default_page", mPages);
        OpenUI("PageSize", "Page Size", "Seitengröße", 10, chosen);
        CodeChoices("PageSize", mPages);
        // Programs of old ask for the region instead; it means the same here.
        OpenUI("PageRegion", "Page Region", "Seitenbereich", 10, chosen);
        CodeChoices("PageRegion", mPages);
        Line("*DefaultImageableArea: " + chosen);
        Line("*DefaultPaperDimension: " + chosen);
        for (const ordered_json &page : mPages) {
            const ordered_json &area = page["area"];
            Value("*ImageableArea " + page["name"].get<std::string>(),
                  Number(area[0]) + " " + Number(area[1]) + " " + Number(area[2]) + " " +
                      Number(area[3]));
            Value("*PaperDimension " + page["name"].get<std::string>(), Sheet(page));
        }
    }

    /// Width and height of the paper; where the printer's file does not tell them, the margins that
    /// it has on two sides are taken for the others as well.
    static std::string Sheet(const ordered_json &page) {
        const auto sheet = page.find("sheet");
        if (sheet != page.end() && sheet->is_array())
            return Number((*sheet)[0]) + " " + Number((*sheet)[1]);
        const ordered_json &area = page["area"];
        return Number(area[0].get<double>() + area[2].get<double>()) + " " +
               Number(area[1].get<double>() + area[3].get<double>());
    }

    void CustomPages() {
        const ordered_json &custom = mPrinter["custom"];
        if (custom.is_null()) return;
        Line("*VariablePaperSize: True");
        Line("*LeadingEdge PreferLong: \"\"");
        Line("*DefaultLeadingEdge: PreferLong");
        Line("*MaxMediaWidth: \"" + Number(custom["max_width"]) + "\"");
        Line("*MaxMediaHeight: \"" + Number(custom["max_height"]) + "\"");
        Line("*HWMargins: 0 0 0 0");
        Line("*NonUIOrderDependency: 10 AnySetup *CustomPageSize");
        Value("*CustomPageSize True", custom["code"]);
        for (const ordered_json &param : custom["params"])
            Line("*ParamCustomPageSize " + param["name"].get<std::string>() + ": " +
                 Number(param["index"]) + " " + param["units"].get<std::string>() + " " +
                 Number(param["min"]) + " " + Number(param["max"]));
    }

    void Resolutions() {
        OpenUI("Resolution", "Resolution", "Auflösung", 20,
               Default("resolutions", "default_resolution", mResolutions));
        CodeChoices("Resolution", mResolutions);
    }

    /// Choices of ours, which put no code into a document.
    void PlainChoices(const std::string &keyword, const std::string &english,
                      const std::string &german, int order, const std::vector<Choice> &choices) {
        OpenUI(keyword, english, german, order, choices.front().key);
        for (const Choice &choice : choices) {
            Value("*" + keyword + " " + choice.key + "/" +
                      ASCIITranslation(choice.english, choice.key),
                  "");
            Translate(keyword + " " + choice.key, choice.english, choice.german);
        }
        Line("*CloseUI: *" + keyword);
    }

    void DocumentChoices() {
        using namespace queue_option;
        Line("*OpenGroup: ZEL/Document");
        Translate("Translation ZEL", "Document", "Dokument");
        std::vector<Choice> spaces = {
            {"CMYK", "CMYK", "CMYK"}, {"RGB", "RGB", "RGB"}, {"Gray", "Gray", "Graustufen"}};
        if (!IsColour()) std::rotate(spaces.begin(), spaces.end() - 1, spaces.end());
        PlainChoices(kColourSpace, "Colour Space", "Farbraum", 30, spaces);
        std::vector<Choice> formats = {{"PS", "PostScript", "PostScript"},
                                       {"EPS", "EPS, one file a page", "EPS, je Seite eine Datei"}};
        if (mOptions.eps) std::swap(formats[0], formats[1]);
        PlainChoices(kFormat, "File Format", "Dateiformat", 31, formats);
        SeparationChoices();
        PlainChoices(kScaling, "Scaling of Pictures", "Bilder skalieren", 33,
                     {{"auto", "As the picture says", "Wie das Bild es sagt"},
                      {"shrink", "Only when too large", "Nur wenn zu groß"},
                      {"fit", "As large as fits", "So groß wie möglich"},
                      {"none", "Never", "Nie"}});
        PlainChoices(kRotation, "Rotation on the Media", "Drehung auf dem Medium", 34,
                     {{"None", "None", "Keine"}, {"Turned", "By 90 degrees", "Um 90 Grad"}});
        Line("*CloseGroup: ZEL");
    }

    void SeparationChoices() {
        std::vector<Choice> choices;
        for (const std::string &name : mOptions.separations)
            choices.push_back({"S" + std::to_string(choices.size() + 1), name, name});
        choices.push_back({"Standard", "Standard", "Standard"});
        PlainChoices(queue_option::kSeparation, "Separation", "Separation", 32, choices);
        for (const Choice &choice : choices)
            Value(std::string("*") + queue_option::kSeparationName + " " + choice.key,
                  choice.english);
    }
};

} // namespace

std::string MakeQueuePPD(const ordered_json &printer, const QueuePPDOptions &options) {
    return PPDMaker(printer, options).Make();
}
