#include "host/readers/ByteReader.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr size_t kBufferBytes = 1 << 16;

ssize_t ReadOn(int descriptor, uint8_t *bytes, size_t count) {
    ssize_t done = 0;
    do
        done = read(descriptor, bytes, count);
    while (done < 0 && errno == EINTR);
    return done;
}

} // namespace

ByteReader::ByteReader(const std::string &path)
    : mDescriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC)), mBuffer(kBufferBytes) {}

ByteReader::~ByteReader() {
    if (mDescriptor >= 0) (void)close(mDescriptor);
}

int64_t ByteReader::Size() const {
    struct stat info {};
    return mDescriptor >= 0 && fstat(mDescriptor, &info) == 0 ? info.st_size : 0;
}

bool ByteReader::Seek(int64_t position) {
    if (position >= mPast && position <= mPast + static_cast<int64_t>(mEnd)) {
        mAt = static_cast<size_t>(position - mPast);
        return true;
    }
    if (mDescriptor < 0 || lseek(mDescriptor, position, SEEK_SET) != position) return false;
    mPast = position;
    mAt = mEnd = 0;
    return true;
}

ssize_t ByteReader::Read(uint8_t *bytes, size_t count) {
    if (mAt == mEnd) {
        const ssize_t done = ReadOn(mDescriptor, bytes, count);
        mPast += static_cast<int64_t>(mEnd) + std::max<ssize_t>(done, 0);
        mAt = mEnd = 0;
        return done;
    }
    const size_t done = std::min(count, mEnd - mAt);
    std::copy_n(mBuffer.data() + mAt, done, bytes);
    mAt += done;
    return static_cast<ssize_t>(done);
}

bool ByteReader::Fill() {
    if (mDescriptor < 0) return false;
    const ssize_t count = ReadOn(mDescriptor, mBuffer.data(), mBuffer.size());
    if (count <= 0) return false;
    mPast += static_cast<int64_t>(mEnd);
    mAt = 0;
    mEnd = static_cast<size_t>(count);
    return true;
}
