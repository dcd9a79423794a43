// zelprint --ppd with real vendors' files: what stands in the document, and whether Ghostscript
// runs it. The vendors' code is taken from the files by the tests' own reader.
#include "tests/host/RunShell.h"
#include "tests/ppd/ReferenceReader.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace {

namespace fs = std::filesystem;

struct Printer {
    const char *label;
    const char *copyPPD; ///< a shell command that writes the PPD file to its output
    const char *page, *resolution;
    const char *customSize;     ///< as --media takes it, within the printer's range
    const char *customOperands; ///< what stands before the vendor's custom page code
    double customArea[4];
};

constexpr const char kArchive[] =
    "/usr/lib/cups/driver/openprinting-ppds cat openprinting-ppds:0/ppd/openprinting/";
const std::string kEpson = std::string(kArchive) + "Epson/epal2600.ppd";
const std::string kRicoh = std::string(kArchive) + "Ricoh/PS/Ricoh-Aficio_AP3200_PS.ppd";

const Printer kPrinters[] = {
    {"HP",
     "cat /usr/share/ppd/hp-ppd/HP/HP_LaserJet_3200M.ppd",
     "A4",
     "600dpi",
     "400x600pt",
     "400 600 0 0 1 \n",
     {0, 0, 400, 600}},
    // Its orientation stands third, before the offsets.
    {"Epson",
     kEpson.c_str(),
     "Letter",
     "300dpi",
     "400x600pt",
     "400 600 3 0 0 \n",
     {0, 0, 400, 600}},
    {"Ricoh", kRicoh.c_str(), "A4", "300dpi", "450x600pt", "450 600 0 0 1 \n", {0, 0, 450, 600}},
};

void PrintTo(const Printer &printer, std::ostream *stream) {
    *stream << printer.label;
}

std::string ReadFile(const fs::path &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string Between(const std::string &text, const std::string &begin, const std::string &end) {
    const size_t from = text.find(begin);
    const size_t to = from == std::string::npos ? from : text.find(end, from + begin.size());
    if (to == std::string::npos) return "(missing)";
    return text.substr(from + begin.size(), to - from - begin.size());
}

std::string BoundingBoxOf(const double (&area)[4]) {
    std::ostringstream text;
    text << std::floor(area[0]) << ' ' << std::floor(area[1]) << ' ' << std::ceil(area[2]) << ' '
         << std::ceil(area[3]);
    return text.str();
}

std::string HiResBoundingBoxOf(const double (&area)[4]) {
    char text[200];
    (void)std::snprintf(text, sizeof text, "%f %f %f %f", area[0], area[1], area[2], area[3]);
    return text;
}

class PrintWithPPD : public testing::TestWithParam<Printer> {
protected:
    void SetUp() override {
        const char *parent = std::getenv("TEMP");
        std::string folder = std::string(parent ? parent : "/tmp") + "/print-XXXXXX";
        ASSERT_NE(mkdtemp(folder.data()), nullptr);
        mFolder = folder;
        const Outcome copied = RunShell(std::string(GetParam().copyPPD) + " > " + Quoted(PPD()));
        ASSERT_EQ(copied.status, 0) << "install hp-ppd and openprinting-ppds; " << copied.output;
        mModel = reference::ReadModel(ReadFile(PPD()));
        ASSERT_EQ(mModel.refusal, "");
        std::ofstream image(mFolder / "image.pgm", std::ios::binary);
        image << "P5 30 40 255\n";
        for (int i = 0; i < 30 * 40; ++i)
            image.put(static_cast<char>(i % 200));
    }
    void TearDown() override { fs::remove_all(mFolder); }

    std::string PPD() const { return (mFolder / "printer.ppd").string(); }

    /// The document that zelprint writes.
    std::string Print(const std::string &options) {
        const Outcome outcome = RunShell(
            "ZEL_BUNDLE=" + Quoted(ZEL_TEST_BUNDLE) + " " + Quoted(ZEL_TEST_ZELPRINT) + " --ppd " +
            Quoted(PPD()) + " --colour-space gray --output " + Quoted(Document()) + " " + options +
            " " + Quoted((mFolder / "image.pgm").string()));
        EXPECT_EQ(outcome.status, 0) << outcome.output;
        return ReadFile(Document());
    }
    std::string Document() const { return (mFolder / "document.ps").string(); }

    reference::Page Page(const std::string &name) const {
        const auto &pages = mModel.pages;
        const auto found = std::find_if(pages.begin(), pages.end(),
                                        [&](const auto &page) { return page.name == name; });
        return found == pages.end() ? reference::Page() : *found;
    }
    std::string ResolutionCode() const {
        for (const auto &resolution : mModel.resolutions)
            if (resolution.name == GetParam().resolution) return resolution.code;
        return "(missing)";
    }

    /// Bounding boxes and setup of the document, and that Ghostscript paints just that area.
    void Expect(const std::string &document, const std::string &code, const double (&area)[4]) {
        EXPECT_EQ(Between(document, "%%BoundingBox: ", "\n"), BoundingBoxOf(area));
        EXPECT_EQ(Between(document, "%%HiResBoundingBox: ", "\n"), HiResBoundingBoxOf(area));
        EXPECT_EQ(Between(document, "/docsave save def\n", "%%EndSetup"),
                  ResolutionCode() + "\n" + code + "\n");
        const Outcome ran =
            RunShell("gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=bbox " + Quoted(Document()));
        EXPECT_EQ(ran.status, 0) << ran.output;
        std::istringstream painted(Between(ran.output, "%%HiResBoundingBox: ", "\n"));
        for (const double edge : area) {
            double number = -1;
            painted >> number;
            EXPECT_NEAR(number, edge, 0.25) << ran.output; // a device pixel at 300 dpi
        }
    }

    fs::path mFolder;
    reference::Model mModel;
};

} // namespace

TEST_P(PrintWithPPD, NamedPage_HasTheVendorsCodeResolutionFirst) {
    const reference::Page page = Page(GetParam().page);
    ASSERT_NE(page.code, "");
    const std::string document =
        Print(std::string("--media ") + GetParam().page + " --resolution " + GetParam().resolution);
    Expect(document, page.code, page.area);
}

TEST_P(PrintWithPPD, CustomPage_HasItsOperandsBeforeTheVendorsCode) {
    ASSERT_TRUE(mModel.customCode.has_value());
    const std::string document = Print(std::string("--media ") + GetParam().customSize +
                                       " --resolution " + GetParam().resolution);
    Expect(document, GetParam().customOperands + *mModel.customCode, GetParam().customArea);
}

INSTANTIATE_TEST_SUITE_P(Vendors, PrintWithPPD, testing::ValuesIn(kPrinters),
                         [](const auto &info) { return std::string(info.param.label); });
