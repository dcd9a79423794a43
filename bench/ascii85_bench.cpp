// Base-85 encoding: every kernel, and the encoder with its lines, beside the literal transcription.
#include "Common/Src/stream/ASCII85.h"
#include "Common/Src/stream/StreamEncoders.h"
#include "Common/Src/stream/Writebuffer.h"
#include "tests/Common/Src/stream/LiteralASCII85.h"
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

/// A row of an RGB page of A4 at 600 dpi, rounded to whole blocks.
constexpr size_t kRowBytes = 14848;

enum class Data { kRandom, kWhite, kZero, kMixed };
constexpr const char *kDataNames[] = {"random", "255", "zero", "mixed"};

std::vector<uint8_t> MakeRow(Data kind) {
    std::mt19937 random(1);
    std::vector<uint8_t> row(kRowBytes);
    for (size_t i = 0; i < row.size(); i += 4) {
        const bool zero = kind == Data::kZero || (kind == Data::kMixed && random() % 3 == 0);
        for (size_t k = 0; k < 4 && !zero; ++k)
            row[i + k] = kind == Data::kWhite ? uint8_t{255} : static_cast<uint8_t>(random());
    }
    return row;
}

void SetCounters(benchmark::State &state) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kRowBytes));
}

void RunKernel(benchmark::State &state, ASCII85Kernel kernel, Data kind) {
    const std::vector<uint8_t> row = MakeRow(kind);
    std::vector<char> text(kRowBytes / 4 * 5 + kASCII85Slack);
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(kernel(row.data(), kRowBytes / kASCII85BlockBytes, text.data()));
        benchmark::ClobberMemory();
    }
    SetCounters(state);
}

/// Lines into memory that is used again and again, so that nothing but the encoder is measured.
void RunLiteral(benchmark::State &state, Data kind) {
    const std::vector<uint8_t> row = MakeRow(kind);
    std::vector<char> memory(kWBufferCapacity);
    size_t used = 0;
    LiteralASCII85 encoder([&](const char *bytes, size_t length) {
        if (used + length > memory.size()) used = 0;
        std::memcpy(memory.data() + used, bytes, length);
        used += length;
        benchmark::ClobberMemory();
        return int16_t{0};
    });
    while (state.KeepRunning())
        benchmark::DoNotOptimize(encoder.Write(row.data(), row.size()));
    SetCounters(state);
}

/// Both encoders on a Writebuffer whose file is the null device.
class NullOutput {
public:
    NullOutput()
        : mFd(open("/dev/null", O_WRONLY | O_CLOEXEC)), mWriteBuffer(NewWbuffer(0, 0, mFd)) {}
    ~NullOutput() {
        (void)DisposeWbuffer(mWriteBuffer);
        close(mFd);
    }
    NullOutput(const NullOutput &) = delete;
    NullOutput &operator=(const NullOutput &) = delete;
    Writebuffer *Get() { return mWriteBuffer; }

private:
    int mFd;
    Writebuffer *mWriteBuffer;
};

void RunEncoder(benchmark::State &state, Data kind) {
    const std::vector<uint8_t> row = MakeRow(kind);
    NullOutput output;
    ASCII85StreamEncoder encoder(output.Get());
    while (state.KeepRunning())
        benchmark::DoNotOptimize(encoder.Write(row.data(), row.size()));
    SetCounters(state);
}

void RunLiteralEncoder(benchmark::State &state, Data kind) {
    const std::vector<uint8_t> row = MakeRow(kind);
    NullOutput output;
    LiteralASCII85 encoder([&](const char *bytes, size_t length) {
        uint64_t count = length;
        return WBWrite(output.Get(), &count, bytes);
    });
    while (state.KeepRunning())
        benchmark::DoNotOptimize(encoder.Write(row.data(), row.size()));
    SetCounters(state);
}

[[maybe_unused]] const bool gRegistered = [] {
    for (const Data kind : {Data::kRandom, Data::kWhite, Data::kZero, Data::kMixed}) {
        const std::string data = std::string("/") + kDataNames[static_cast<int>(kind)];
        benchmark::RegisterBenchmark(("literal" + data).c_str(), RunLiteral, kind);
        for (const ASCII85NamedKernel &named : ASCII85Kernels()) {
            benchmark::RegisterBenchmark((named.name + data).c_str(), RunKernel, named.kernel,
                                         kind);
        }
        benchmark::RegisterBenchmark(("literal encoder, /dev/null" + data).c_str(),
                                     RunLiteralEncoder, kind)
            ->UseRealTime();
        benchmark::RegisterBenchmark(("encoder, /dev/null" + data).c_str(), RunEncoder, kind)
            ->UseRealTime();
    }
    return true;
}();

} // namespace
