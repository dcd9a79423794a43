#include "host/readers/images/PlainBits.h"

#include "host/readers/PNMHeader.h"
#include <memory>
#include <stdexcept>

namespace {

/// Packs the bits of a file, eight a byte, each row from a new byte.
class BitPacker {
public:
    explicit BitPacker(const std::string &path) : mFile(path), mHeader(ReadPNMHeader(mFile)) {
        if (!mHeader.IsPlain() || !mHeader.IsBits()) throw std::runtime_error("not plain bits");
        mHead =
            "P4\n" + std::to_string(mHeader.width) + " " + std::to_string(mHeader.height) + "\n";
    }

    /// The next bytes; none at the end. Throws std::runtime_error.
    size_t Read(uint8_t *bytes, size_t count) {
        size_t done = 0;
        while (done < count && mHeadUsed < mHead.size())
            bytes[done++] = static_cast<uint8_t>(mHead[mHeadUsed++]);
        while (done < count && mRow < mHeader.height)
            bytes[done++] = NextByte();
        return done;
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

gint64 ReadBits(VipsSourceCustom *, void *buffer, gint64 length, void *packer) {
    try {
        return static_cast<gint64>(static_cast<BitPacker *>(packer)->Read(
            static_cast<uint8_t *>(buffer), static_cast<size_t>(length)));
    } catch (const std::runtime_error &error) {
        vips_error("zelprint", "%s", error.what());
        return -1;
    }
}

void Forget(gpointer packer, GClosure *) {
    delete static_cast<BitPacker *>(packer);
}

} // namespace

VipsSource *NewPlainBitsSource(const std::string &path) {
    std::unique_ptr<BitPacker> packer;
    try {
        packer = std::make_unique<BitPacker>(path);
    } catch (const std::runtime_error &error) {
        vips_error("zelprint", "%s", error.what());
        return nullptr;
    }
    VipsSourceCustom *source = vips_source_custom_new();
    g_signal_connect_data(source, "read", G_CALLBACK(ReadBits), packer.release(), Forget,
                          static_cast<GConnectFlags>(0));
    return VIPS_SOURCE(source);
}
