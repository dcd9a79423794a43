#include "host/readers/ByteReader.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr size_t kBufferBytes = 1 << 16;

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

bool ByteReader::Fill() {
    if (mDescriptor < 0) return false;
    ssize_t count = 0;
    do
        count = read(mDescriptor, mBuffer.data(), mBuffer.size());
    while (count < 0 && errno == EINTR);
    if (count <= 0) return false;
    mPast += static_cast<int64_t>(mEnd);
    mAt = 0;
    mEnd = static_cast<size_t>(count);
    return true;
}
