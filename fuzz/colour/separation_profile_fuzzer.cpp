// Bytes as a separation profile. What loads must separate every corner of the colours, by the
// plain and by the fast form alike.
#include "colour/EightColourLUT.h"
#include "colour/EightColourSeparation.h"
#include "fuzz/MemoryFile.h"

#include <cstdlib>
#include <cstring>
#include <iterator>

namespace {

void Separate(const EightColourLUT &table) {
    constexpr uint8_t kLevels[] = {0, 1, 100, 254, 255};
    constexpr int kLevelCount = std::size(kLevels);
    constexpr int64_t kColours = kLevelCount * kLevelCount * kLevelCount;
    uint8_t src[4 * kColours] = {};
    for (int i = 0; i < kColours; ++i) {
        src[4 * i] = kLevels[i / (kLevelCount * kLevelCount)];
        src[4 * i + 1] = kLevels[i / kLevelCount % kLevelCount];
        src[4 * i + 2] = kLevels[i % kLevelCount];
    }
    uint8_t plain[4 * kColours];
    uint8_t fast[4 * kColours];
    EightColourLUTSeparatePlain(&table, src, 4, kColours, plain, 1, 4);
    EightColourLUTSeparate(&table, src, 4, kColours, fast, 4, 1, 4);
    if (std::memcmp(plain, fast, sizeof plain) != 0) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static MemoryFile file;
    static const CFRef<CFURLRef> url = file.URL();
    file.Hold(data, size);
    EightColourLUT *table = LoadEightColourLUT(url.Get());
    if (table) Separate(*table);
    ReleaseEightColourLUT(table);
    return 0;
}
