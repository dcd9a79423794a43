#include "host/readers/pdf/PDFRenderer.h"

#include "host/readers/SpooledInput.h"
#include "host/terminal/Console.h"
#include "host/terminal/ExitStatus.h"
#include <algorithm>
#include <chrono>
#include <cstdio>

namespace {

/// From here on the dots of any printer are too fine for a stair to be seen, and what is gray at
/// the edges would be screened.
constexpr double kFineResolution = 400;
constexpr size_t kLongestHeaderLine = 200;
/// Their places in the plan.
constexpr int kLightProfile = 0;
constexpr int kInkProfile = 1;

/// A line of input is a call of zelDraw. Matrix and clip hold whenever the page's device is set up,
/// which the interpreter does more than once a page. What pages leave in memory is thrown away now
/// and then: not after each, since fonts go with it.
const char kProgram[] = R"(
/zelMatrix [1 0 0 1 0 0] def
/zelClip [0 0 1 1] def
<< /BeginPage { pop zelMatrix concat zelClip aload pop rectclip } >> setpagedevice
/zelDraw {
    /zelMatrix exch def
    /zelClip exch def
    /zelPage exch def
    mark
    { zelPage pdfgetpage pdfshowpage } stopped { (zelprint failed ) print $error /errorname get = } if
    cleartomark
    (zelprint drawn ) print zelPage = flush
} def
/zelPages 0 def
/zelServe {
    {
        zelIn 1000 string readline { cvx exec } { pop exit } ifelse
        /zelPages zelPages 1 add def
        zelPages 50 eq { zelState restore /zelState save def } if
    } loop
} def
/zelState save def
zelServe
runpdfend
flush quit
)";

std::string Format(const char *format, double a, double b) {
    char text[64];
    (void)snprintf(text, sizeof text, format, a, b);
    return text;
}

std::string CommandFor(const PDFPageJob &job) {
    char text[512];
    const PDFMatrix &m = job.matrix;
    (void)snprintf(text, sizeof text, "%d [0 0 %.6f %.6f] [%.9g %.9g %.9g %.9g %.6f %.6f] zelDraw",
                   job.number, job.page.width, job.page.height, m.a, m.b, m.c, m.d, m.e, m.f);
    return text;
}

using Arguments = std::vector<std::string>;

/// Profiles of the file give way to ours: ink stays ink. Black point compensation would move what
/// the profiles say by a tenth.
Arguments ProfileArguments(const char *device, const char *output) {
    return {device,
            output,
            "-sDefaultRGBProfile=" + Ghostscript::ProfileFile(kLightProfile),
            "-sDefaultCMYKProfile=" + Ghostscript::ProfileFile(kInkProfile),
            "-dOverrideICC",
            "-dRenderIntent=1",
            "-dBlackPtComp=0"};
}

Arguments ColourArguments(const PDFDrawing &drawing, CMYKLook look) {
    const std::string output = "-sOutputICCProfile=";
    if (drawing.pixels == DocumentPixels::Darkness)
        return {"-sDEVICE=pgmraw", "-dUseFastColor"}; // 0.3 R + 0.59 G + 0.11 B
    if (drawing.pixels == DocumentPixels::CMYK) {
        Arguments arguments = ProfileArguments(
            "-sDEVICE=pamcmyk32", (output + Ghostscript::ProfileFile(kInkProfile)).c_str());
        arguments.emplace_back("-dOverprint=/simulate"); // of spot colours
        return arguments;
    }
    if (look == CMYKLook::Plain && drawing.inks)
        return ProfileArguments("-sDEVICE=ppmraw",
                                (output + Ghostscript::ProfileFile(kLightProfile)).c_str());
    return {"-sDEVICE=ppmraw"};
}

GhostscriptPlan MakePlan(const std::string &path, const PDFOptions &options,
                         const PDFDrawing &drawing) {
    const PageGrid &grid = drawing.grid;
    GhostscriptPlan plan;
    plan.path = path;
    plan.password = options.password;
    if (drawing.inks) plan.profiles = {drawing.inks->light, drawing.inks->ink};
    plan.program = kProgram;
    plan.arguments = ColourArguments(drawing, options.look);
    const bool coarse = std::min(grid.dpiX, grid.dpiY) < kFineResolution;
    if (options.antialias.value_or(coarse))
        for (const char *argument : {"-dTextAlphaBits=4", "-dGraphicsAlphaBits=4"})
            plan.arguments.emplace_back(argument);
    const Arguments geometry = {"-sOutputFile=%stdout",
                                "-dPrinted",
                                "-dUseCropBox",
                                "-dFIXEDMEDIA",
                                "-sBandListStorage=memory",
                                "-sFONTPATH=/usr/share/fonts",
                                Format("-r%.6fx%.6f", grid.dpiX, grid.dpiY),
                                "-g" + std::to_string(grid.width) + "x" +
                                    std::to_string(grid.height)};
    plan.arguments.insert(plan.arguments.end(), geometry.begin(), geometry.end());
    return plan;
}

int64_t Now() {
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

} // namespace

bool PDFDrawing::operator==(const PDFDrawing &other) const {
    return grid.width == other.grid.width && grid.height == other.grid.height &&
           grid.dpiX == other.grid.dpiX && grid.dpiY == other.grid.dpiY && pixels == other.pixels &&
           inks == other.inks;
}

PDFRenderer::PDFRenderer(std::string path, const PDFOptions &options, const PDFDrawing &drawing)
    : mPath(std::move(path)), mDrawing(drawing), mPageSeconds(options.pageSeconds),
      mGhostscript(MakePlan(mPath, options, drawing),
                   [this](const std::string &line) { Hear(line); }) {}

int PDFRenderer::Bands() const {
    return mDrawing.pixels == DocumentPixels::CMYK   ? 4
           : mDrawing.pixels == DocumentPixels::XRGB ? 3
                                                     : 1;
}

void PDFRenderer::Hear(const std::string &line) {
    if (line == "zelprint drawn " + std::to_string(mPage))
        mDrawn = true;
    else
        mMessages.Add(line);
}

void PDFRenderer::Draw(const PDFPageJob &page, const PageRows::MakeRoom &room,
                       const std::atomic<bool> &stopped) {
    mPage = page.number;
    mDrawn = false;
    mWaited = 0;
    mUsable = false;
    // One that has ended tells why below; one that has not would be waited for.
    if (!mGhostscript.Send(CommandFor(page))) mGhostscript.EndInput();
    if (!ReadHeader(stopped) || !ReadRows(room, stopped)) return;
    WaitForEnd(stopped);
    if (stopped) return;
    Judge();
    mUsable = true;
}

/// Fills `samples`, and less only when stopped.
size_t PDFRenderer::Read(uint8_t *samples, size_t size, const std::atomic<bool> &stopped) {
    size_t done = 0;
    while (done < size && !stopped) {
        const int64_t start = Now();
        const bool drawn = mDrawn;
        const size_t count = mGhostscript.Read(samples + done, size - done);
        done += count;
        mWaited += Now() - start;
        // The renderer tells the end of a page when it has written all that there is of it, which
        // may be after this call has looked for samples.
        if (drawn && count == 0) ThrowLost(WhyLost());
        if (done < size && mGhostscript.OutputHasEnded()) ThrowEnded();
        CheckTime();
    }
    return done;
}

void PDFRenderer::CheckTime() const {
    if (mPageSeconds > 0 && mWaited > int64_t{1000} * mPageSeconds)
        ThrowLost("it takes longer than " + std::to_string(mPageSeconds) +
                  " seconds, the limit of --page-time");
}

std::string PDFRenderer::ReadHeaderLine(const std::atomic<bool> &stopped) {
    std::string line;
    for (uint8_t byte = 0; line.size() < kLongestHeaderLine && Read(&byte, 1, stopped) == 1;) {
        if (byte == '\n') break;
        line += static_cast<char>(byte);
    }
    return line;
}

/// The header of a PAM, PPM or PGM image of the size asked for; false when stopped.
bool PDFRenderer::ReadHeader(const std::atomic<bool> &stopped) {
    const std::string width = std::to_string(mDrawing.grid.width);
    const std::string height = std::to_string(mDrawing.grid.height);
    const Arguments pam = {"P7",      "WIDTH " + width, "HEIGHT " + height,
                           "DEPTH 4", "MAXVAL 255",     "TUPLTYPE CMYK",
                           "ENDHDR"};
    const Arguments pnm = {Bands() == 3 ? "P6" : "P5", width + " " + height, "255"};
    for (const std::string &wanted : Bands() == 4 ? pam : pnm) {
        std::string line;
        do
            line = ReadHeaderLine(stopped);
        while (!stopped && !line.empty() && line[0] == '#');
        if (stopped) return false;
        if (line != wanted)
            ThrowLost(std::string("its rows begin with ")
                          .append(line)
                          .append(" instead of ")
                          .append(wanted));
    }
    return true;
}

/// False when stopped, or when nobody wants more.
bool PDFRenderer::ReadRows(const PageRows::MakeRoom &room, const std::atomic<bool> &stopped) {
    const size_t rowBytes = static_cast<size_t>(mDrawing.grid.width) * static_cast<size_t>(Bands());
    int filled = 0;
    for (int top = 0; top < mDrawing.grid.height; top += filled) {
        const PageRows::Space space = room(filled);
        if (!space.rows) return false;
        filled = std::min(space.count, mDrawing.grid.height - top);
        const size_t bytes = static_cast<size_t>(filled) * rowBytes;
        if (Read(space.rows, bytes, stopped) != bytes) return false;
    }
    return room(filled).rows != nullptr;
}

void PDFRenderer::WaitForEnd(const std::atomic<bool> &stopped) {
    while (!mDrawn && !stopped) {
        const int64_t start = Now();
        (void)mGhostscript.Read(nullptr, 0);
        mWaited += Now() - start;
        // Whether its rows have ended as well is not known: nobody reads them here.
        if (mGhostscript.MessagesHaveEnded() && !mDrawn) ThrowEnded();
        if (!mDrawn) CheckTime();
    }
}

void PDFRenderer::Judge() {
    if (!mMessages.Lost().empty()) ThrowLost(mMessages.Lost());
    if (!mMessages.Repaired().empty() && !mToldRepair) {
        mToldRepair = true;
        Complain(NameOfInput(mPath) + ": page " + std::to_string(mPage) +
                 " has errors that were repaired (" + mMessages.Repaired() +
                 "); look at what was printed");
    }
    mMessages.Clear();
}

/// Why there are not as many rows as there should be.
std::string PDFRenderer::WhyLost() const {
    if (!mMessages.Lost().empty()) return mMessages.Lost();
    return mMessages.Last().empty() ? "its rows end early" : mMessages.Last();
}

void PDFRenderer::ThrowLost(const std::string &why) const {
    throw HostError(ExitStatus::Input, NameOfInput(mPath) + ": page " + std::to_string(mPage) +
                                           " cannot be drawn whole (" + why +
                                           "); nothing was printed");
}

void PDFRenderer::ThrowEnded() {
    while (!mGhostscript.HasEnded()) {
        uint8_t rest[256];
        (void)mGhostscript.Read(rest, sizeof rest);
    }
    const std::string end = mGhostscript.Wait();
    ThrowLost(WhyLost() + (end.empty() ? "" : "; the renderer: " + end));
}

void PDFRenderer::Finish() {
    if (!mUsable) return;
    mUsable = false;
    mGhostscript.EndInput();
    size_t more = 0;
    while (!mGhostscript.HasEnded()) {
        uint8_t rest[256];
        more += mGhostscript.Read(rest, sizeof rest);
    }
    const std::string end = mGhostscript.Wait();
    if (more > 0) ThrowLost("the renderer has drawn more than was asked for");
    if (!end.empty()) ThrowLost("the renderer: " + end);
}
