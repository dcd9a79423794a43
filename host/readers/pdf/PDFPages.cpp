#include "host/readers/pdf/PDFPages.h"

#include "host/readers/SpooledInput.h"
#include "host/readers/pdf/PDFMessages.h"
#include "host/terminal/ExitStatus.h"
#include <algorithm>
#include <cstdio>
#include <sstream>

namespace {

/// Thousands of pages take a tenth of a second. There are files whose pages nobody can count.
constexpr std::chrono::minutes kLongestCount{5};
/// To be told of a page is not worth waiting longer for.
constexpr std::chrono::seconds kLongestLook{20};
constexpr size_t kMostPages = 1000000;

/// Tells the number of pages and every page's entries, a line each.
const char kProgram[] = R"(
/zelNumber { dup type dup /integertype eq exch /realtype eq or not { pop 0 } if =only ( ) print }
bind def
/zelBox {
    2 copy known { get } { pop pop [] } ifelse
    dup type /arraytype eq { dup length 4 ne } { true } ifelse { pop [0 0 0 0] } if
    { zelNumber } forall
} bind def
(zelprint pages ) print pdfpagecount = flush
1 1 pdfpagecount dup 1000000 gt { pop 0 } if {
    pdfgetpage dup type /dicttype ne { pop 0 dict } if
    (zelprint page ) print
    dup /MediaBox zelBox dup /CropBox zelBox
    dup /Rotate known { dup /Rotate get } { 0 } ifelse zelNumber
    dup /UserUnit known { dup /UserUnit get } { 1 } ifelse zelNumber
    /UsesTransparency 2 copy known { get true eq } { pop pop false } ifelse { 1 } { 0 } ifelse =
} for
flush quit
)";

/// Tells the numbers of the pages with a transparency group in RGB, of their own or in the forms
/// that they are made of, as filters leave them. The usual interpreter says nothing of groups; the
/// older one, which knows this program's words, lets look into the file.
const char kGroupProgram[] = R"(
/zelIsRGB {
    dup type /arraytype eq {
        dup 0 oget dup /ICCBased eq {
            pop 1 oget /N knownoget { 3 eq } { false } ifelse
        } { exch pop /CalRGB eq } ifelse
    } { /DeviceRGB eq } ifelse
} bind def
/zelIsForm {
    dup type /dicttype eq { /Subtype knownoget { /Form eq } { false } ifelse } { pop false } ifelse
} bind def
% form levels zelBlendsInRGB bool: it or a form in it, so many levels down
/zelBlendsInRGB {
    1 index /Group knownoget { /CS knownoget { zelIsRGB } { false } ifelse } { false } ifelse
    { pop pop true } {
        dup 0 eq { pop pop false } {
            1 sub exch /Resources pget { /XObject knownoget } { false } ifelse {
                false exch
                {
                    exch pop oforce
                    1 index not { dup zelIsForm } { false } ifelse
                    { exch pop 1 index zelBlendsInRGB } { pop } ifelse
                } forall
                exch pop
            } { pop false } ifelse
        } ifelse
    } ifelse
} bind def
1 1 pdfpagecount {
    dup pdfgetpage 4 zelBlendsInRGB { (zelprint rgb ) print dup = } if
    pop
} for
flush quit
)";

[[noreturn]] void Refuse(const std::string &path, const std::string &why) {
    throw HostError(ExitStatus::Input, NameOfInput(path) + ": " + why);
}

[[noreturn]] void ThrowUnreadableFile(const std::string &path, bool hasPassword,
                                      const PDFMessages &messages, const std::string &end) {
    // A wrong password for some kinds of encryption crashes the renderer.
    const bool crashed = hasPassword && end.find("signal") != std::string::npos;
    if (messages.IsWrongPassword() || crashed)
        Refuse(path, "the password does not open it; correct the file named by --password-file");
    if (messages.NeedsPassword())
        Refuse(path, "it is encrypted; write its password into a file and name that with "
                     "--password-file");
    if (end.find("seconds") != std::string::npos)
        Refuse(path, "its pages cannot be counted (" + end + "); the file is damaged or malicious");
    std::string why = messages.Lost().empty() ? messages.Last() : messages.Lost();
    if (why.empty() || why.find("zelprint") == 0) why = end.empty() ? "it has no pages" : end;
    Refuse(path, "its pages cannot be read (" + why + "); the file is damaged or no PDF file");
}

GhostscriptPlan PlanFor(const std::string &path, const PDFOptions &options,
                        const std::vector<std::string> &arguments, const char *program) {
    GhostscriptPlan plan;
    plan.path = path;
    plan.password = options.password;
    plan.arguments = {"-q", "-dNODISPLAY"};
    plan.arguments.insert(plan.arguments.end(), arguments.begin(), arguments.end());
    plan.program = program;
    return plan;
}

} // namespace

/// What the program tells.
class PDFPageCount::List {
public:
    void Add(const std::string &line) {
        mMessages.Add(line);
        std::istringstream text(line);
        std::string name, what;
        text >> name >> what;
        if (name != "zelprint") return;
        if (what == "pages") text >> mCount;
        if (what == "page" && mPages.size() < kMostPages) AddPage(text);
    }

    [[nodiscard]] bool IsWhole() const { return mCount > 0 && mPages.size() == mCount; }
    [[nodiscard]] bool IsTooLong() const { return mCount > kMostPages; }
    [[nodiscard]] std::vector<PDFPage> Take() { return std::move(mPages); }
    [[nodiscard]] const PDFMessages &Messages() const { return mMessages; }

private:
    void AddPage(std::istream &text) {
        PDFPageEntry entry;
        for (PDFBox *box : {&entry.media, &entry.crop})
            text >> box->left >> box->bottom >> box->right >> box->top;
        text >> entry.rotation >> entry.userUnit >> entry.transparent;
        if (text) mPages.push_back(MakePDFPage(entry));
    }

    size_t mCount = 0;
    std::vector<PDFPage> mPages;
    PDFMessages mMessages;
};

PDFPageCount::PDFPageCount(std::string path, const PDFOptions &options)
    : mPath(std::move(path)), mHasPassword(!options.password.empty()),
      mList(std::make_unique<List>()),
      mRenderer(PlanFor(mPath, options, {}, kProgram),
                [list = mList.get()](const std::string &line) { list->Add(line); }) {}

PDFPageCount::~PDFPageCount() = default;

std::vector<PDFPage> PDFPageCount::Finish() {
    const std::string end = mRenderer.Listen(kLongestCount);
    if (mList->IsTooLong())
        Refuse(mPath,
               "it says that it has more than " + std::to_string(kMostPages) + " pages; split it");
    if (!mList->IsWhole()) ThrowUnreadableFile(mPath, mHasPassword, mList->Messages(), end);
    return mList->Take();
}

std::vector<int> ReadPagesBlendedInRGB(const std::string &path, const PDFOptions &options,
                                       const std::vector<PDFPage> &pages) {
    std::vector<int> numbers;
    const auto transparent = [](const PDFPage &page) { return page.transparent; };
    if (std::none_of(pages.begin(), pages.end(), transparent)) return numbers;
    const auto hear = [&](const std::string &line) {
        size_t number = 0;
        if (sscanf(line.c_str(), "zelprint rgb %zu", &number) == 1 && number >= 1 &&
            number <= pages.size() && pages[number - 1].transparent)
            numbers.push_back(static_cast<int>(number));
    };
    Ghostscript reader(PlanFor(path, options, {"-dNEWPDF=false"}, kGroupProgram), hear);
    (void)reader.Listen(kLongestLook);
    return numbers;
}
