// What Ghostscript writes, of any bytes: rows of samples with their header, and messages. A page
// counts as drawn only when all of its rows were there and the renderer has said so. In
// Ghostscript's place stands a child of our own, which has said all that it says before it is
// asked.
#include "fuzz/MemoryFile.h"
#include "host/readers/pdf/PDFRenderer.h"
#include "host/terminal/ExitStatus.h"

#include <fcntl.h>
#include <fuzzer/FuzzedDataProvider.h>
#include <string_view>

namespace {

MemoryFile &SampleFile() {
    static MemoryFile file;
    return file;
}
MemoryFile &MessageFile() {
    static MemoryFile file;
    return file;
}

void Require(bool condition) {
    if (!condition) std::abort();
}

} // namespace

void Descriptor::Close() {
    if (mDescriptor >= 0) close(mDescriptor);
    mDescriptor = -1;
}
int Descriptor::Detach() {
    return std::exchange(mDescriptor, -1);
}
Descriptor &Descriptor::operator=(Descriptor &&other) noexcept {
    std::swap(mDescriptor, other.mDescriptor);
    return *this;
}

ChildProcess::ChildProcess(const ChildPlan &)
    : mOutput(dup(SampleFile().Descriptor())), mMessages(dup(MessageFile().Descriptor())) {}
ChildProcess::~ChildProcess() = default;
bool ChildProcess::Write(const std::string &) const {
    return mInput.IsOpen();
}
void ChildProcess::Kill() const {}
std::string ChildProcess::Wait() {
    mProcess = -1;
    return mEnd;
}

namespace {

/// The header that the renderer is to write.
std::string Header(const PDFDrawing &drawing) {
    const std::string width = std::to_string(drawing.grid.width);
    const std::string height = std::to_string(drawing.grid.height);
    if (drawing.pixels == DocumentPixels::CMYK)
        return "P7\nWIDTH " + width + "\nHEIGHT " + height +
               "\nDEPTH 4\nMAXVAL 255\nTUPLTYPE CMYK\nENDHDR\n";
    const char *kind = drawing.pixels == DocumentPixels::XRGB ? "P6" : "P5";
    return kind + ("\n" + width) + " " + height + "\n255\n";
}

size_t BytesOf(DocumentPixels pixels) {
    return pixels == DocumentPixels::CMYK ? 4 : pixels == DocumentPixels::XRGB ? 3 : 1;
}

void Draw(const PDFDrawing &drawing, bool mayBeDrawn) {
    constexpr int kRoom = 3; // rows
    const std::atomic<bool> stopped = false;
    const auto rowBytes = static_cast<size_t>(drawing.grid.width) * BytesOf(drawing.pixels);
    int rows = 0;
    std::unique_ptr<uint8_t[]>
        space; // of its own size, so that the sanitizer sees what lies beside it
    const auto room = [&](int filled) -> PageRows::Space {
        rows += filled;
        space = std::make_unique<uint8_t[]>(rowBytes * kRoom);
        return {space.get(), kRoom};
    };
    try {
        PDFRenderer renderer("/dev/null", {}, drawing);
        renderer.Draw({}, room, stopped);
        Require(rows == drawing.grid.height && renderer.IsUsable() && mayBeDrawn);
        renderer.Finish();
    } catch (const HostError &error) {
        const std::string_view text = error.what();
        Require(error.Status() == ExitStatus::Input && !text.empty());
        Require(text.find('\n') == std::string_view::npos);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    constexpr size_t kLongestMessages = 2000;
    FuzzedDataProvider data(bytes, size);
    PDFDrawing drawing;
    drawing.pixels = data.PickValueInArray(
        {DocumentPixels::CMYK, DocumentPixels::XRGB, DocumentPixels::Darkness});
    drawing.grid = {data.ConsumeIntegralInRange(1, 16), data.ConsumeIntegralInRange(1, 16), 72, 72};
    const bool hasHeader = data.ConsumeBool();
    const std::string messages = data.ConsumeRandomLengthString(kLongestMessages);
    const std::string samples =
        (hasHeader ? Header(drawing) : std::string()) + data.ConsumeRemainingBytesAsString();
    SampleFile().Hold(samples.data(), samples.size());
    MessageFile().Hold(messages.data(), messages.size());
    Draw(drawing, messages.find("zelprint drawn 1") != std::string::npos);
    return 0;
}
