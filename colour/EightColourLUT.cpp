#include "colour/EightColourLUT.h"
#include "colour/DescriptorKeeper.h"
#include "colour/EightColourProfile.h"
#include "colour/EightColourSeparation.h"
#include "support/RegularFile.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <unistd.h>

const CFStringRef kStandardTableName = CFSTR("Standard");

namespace {

struct FreeTable {
    void operator()(EightColourLUT *table) const { ReleaseEightColourLUT(table); }
};
struct CloseStream {
    void operator()(FILE *stream) const { (void)std::fclose(stream); } // nothing was written
};
using TableOwner = std::unique_ptr<EightColourLUT, FreeTable>;
using StreamOwner = std::unique_ptr<FILE, CloseStream>;

DescriptorKeeper &CheckedFiles() {
    static DescriptorKeeper keeper;
    return keeper;
}

bool HasSignature(const std::string &path) {
    FileDescriptor file = OpenRegularFile(path);
    if (!file) return false;
    char signature[4];
    const bool matches = read(file.Get(), signature, sizeof signature) == sizeof signature &&
                         std::memcmp(signature, "mft2", sizeof signature) == 0;
    CheckedFiles().Keep(std::move(file));
    return matches;
}

StreamOwner OpenStream(const std::string &path) {
    FileDescriptor file = OpenRegularFile(path);
    StreamOwner stream(file ? fdopen(file.Get(), "r") : nullptr);
    if (stream) (void)file.Detach(); // the stream owns it now
    return stream;
}

bool Fill(EightColourLUT &table, FILE *stream) {
    try {
        EightColourProfile profile;
        if (!ReadEightColourProfile(stream, profile)) return false;
        SampleEightColourProfile(profile, table.grid);
        return true;
    } catch (const std::bad_alloc &) {
        return false;
    }
}

} // namespace

bool IsEightColourLUT(CFURLRef url) {
    return HasSignature(PathOfURL(url));
}

EightColourLUT *LoadEightColourLUT(CFURLRef url, bool *sampled) {
    const std::string path = PathOfURL(url);
    if (!HasSignature(path)) return nullptr;
    TableOwner table(static_cast<EightColourLUT *>(std::calloc(1, sizeof(EightColourLUT))));
    if (!table) return nullptr;
    const StreamOwner stream = OpenStream(path);
    if (stream && !Fill(*table, stream.get())) return nullptr;
    BuildVectorTables(table.get());
    if (sampled) *sampled = stream != nullptr;
    return table.release();
}

void ReleaseEightColourLUT(EightColourLUT *table) {
    std::free(table);
}
