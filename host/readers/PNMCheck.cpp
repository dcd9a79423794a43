#include "host/readers/PNMCheck.h"

#include "host/readers/ImageFile.h"
#include "host/readers/PNMHeader.h"
#include <cstring>
#include <stdexcept>

namespace {

void ReadPlainSamples(ByteReader &file, const PNMHeader &header) {
    const int64_t samples = header.Samples();
    // The shortest sample is a digit; no huge size needs to be counted up to.
    if (file.Size() - file.Position() < samples) throw std::runtime_error("its samples end early");
    for (int64_t i = 0; i < samples; ++i)
        if (header.IsBits())
            (void)ReadPNMBit(file);
        else
            (void)ReadPNMNumber(file, header.most);
}

void CheckSamples(ByteReader &file) {
    const PNMHeader header = ReadPNMHeader(file);
    if (header.IsPlain())
        ReadPlainSamples(file, header);
    else if (file.Size() - file.Position() < header.SampleBytes())
        throw std::runtime_error("its samples end early");
}

bool IsRaw(int kind) {
    return kind >= '4' && kind <= '6';
}

} // namespace

void CheckPNM(const std::string &path) {
    std::string problem;
    try {
        ByteReader file(path);
        CheckSamples(file);
        return;
    } catch (const std::runtime_error &error) {
        problem = error.what();
    }
    ThrowUnreadable(path, 0, problem);
}

bool HasSecondPNMImage(const std::string &path) {
    try {
        ByteReader file(path);
        const PNMHeader header = ReadPNMHeader(file);
        if (!IsRaw(header.kind) || !file.Seek(file.Position() + header.SampleBytes())) return false;
        if (file.Next() != 'P' || !IsRaw(file.Next())) return false;
        const int next = file.Next();
        return next != ByteReader::kEnd && next != 0 && strchr(" \t\r\n#", next);
    } catch (const std::runtime_error &) {
        return false;
    }
}
