#include "host/readers/images/PNMSources.h"

#include "host/readers/PNMHeader.h"
#include <memory>
#include <stdexcept>

namespace {

/// What a source hands to libvips.
class Stream {
public:
    Stream() = default;
    Stream(const Stream &) = delete;
    Stream &operator=(const Stream &) = delete;
    virtual ~Stream() = default;
    /// The next bytes, `count` at most. 0 at the end; -1, and `errno` is set, where they cannot be
    /// read. Throws std::runtime_error where they are wrong.
    virtual ssize_t Read(uint8_t *bytes, size_t count) = 0;
};

class FileStream final : public Stream {
public:
    explicit FileStream(const std::string &path) : mFile(path) {}

    ssize_t Read(uint8_t *bytes, size_t count) override { return mFile.Read(bytes, count); }

private:
    ByteReader mFile;
};

/// Packs the bits of a file, eight a byte, each row from a new byte.
class BitPacker final : public Stream {
public:
    explicit BitPacker(const std::string &path) : mFile(path), mHeader(ReadPNMHeader(mFile)) {
        if (!mHeader.IsPlain() || !mHeader.IsBits()) throw std::runtime_error("not plain bits");
        mHead =
            "P4\n" + std::to_string(mHeader.width) + " " + std::to_string(mHeader.height) + "\n";
    }

    ssize_t Read(uint8_t *bytes, size_t count) override {
        size_t done = 0;
        while (done < count && mHeadUsed < mHead.size())
            bytes[done++] = static_cast<uint8_t>(mHead[mHeadUsed++]);
        while (done < count && mRow < mHeader.height)
            bytes[done++] = NextByte();
        return static_cast<ssize_t>(done);
    }

private:
    uint8_t NextByte() {
        unsigned byte = 0;
        for (int bit = 0; bit < 8; ++bit, ++mColumn)
            byte = byte << 1 | (mColumn < mHeader.width && ReadPNMBit(mFile) ? 1U : 0U);
        if (mColumn >= mHeader.width) {
            mColumn = 0;
            ++mRow;
        }
        return static_cast<uint8_t>(byte);
    }

    ByteReader mFile;
    PNMHeader mHeader;
    std::string mHead;
    size_t mHeadUsed = 0;
    int64_t mColumn = 0, mRow = 0;
};

gint64 ReadStream(VipsSourceCustom *, void *buffer, gint64 length, void *stream) {
    try {
        return static_cast<Stream *>(stream)->Read(static_cast<uint8_t *>(buffer),
                                                   static_cast<size_t>(length));
    } catch (const std::runtime_error &error) {
        vips_error("zelprint", "%s", error.what());
        return -1;
    }
}

void Forget(gpointer stream, GClosure *) {
    delete static_cast<Stream *>(stream);
}

template <typename SomeStream>
VipsSource *NewSource(const std::string &path) {
    std::unique_ptr<Stream> stream;
    try {
        stream = std::make_unique<SomeStream>(path);
    } catch (const std::runtime_error &error) {
        vips_error("zelprint", "%s", error.what());
        return nullptr;
    }
    VipsSourceCustom *source = vips_source_custom_new();
    g_signal_connect_data(source, "read", G_CALLBACK(ReadStream), stream.release(), Forget,
                          static_cast<GConnectFlags>(0));
    return VIPS_SOURCE(source);
}

} // namespace

VipsSource *NewStreamedSource(const std::string &path) {
    return NewSource<FileStream>(path);
}

VipsSource *NewPlainBitsSource(const std::string &path) {
    return NewSource<BitPacker>(path);
}
