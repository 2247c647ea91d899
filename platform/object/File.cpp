#include <zel/platform/File.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

IMPLEMENT_DYNAMIC(CFile, CObject)
IMPLEMENT_DYNAMIC(CMemFile, CFile)

namespace {

int SystemFlags(UINT flags) {
    int system = O_CLOEXEC;
    switch (flags & 3) {
        case CFile::modeWrite:
            system |= O_WRONLY;
            break;
        case CFile::modeReadWrite:
            system |= O_RDWR;
            break;
        default:
            system |= O_RDONLY;
            break;
    }
    if (flags & CFile::modeCreate) {
        if ((flags & 3) == CFile::modeRead) system |= O_RDWR;
        system |= O_CREAT;
        if (!(flags & CFile::modeNoTruncate)) system |= O_TRUNC;
    }
    return system;
}

int OpenFile(const char* path, UINT flags) {
    const int descriptor = ::open(path, SystemFlags(flags), 0666);
    if (descriptor < 0) return descriptor;
    struct stat info {};
    if (::fstat(descriptor, &info) == 0 && S_ISDIR(info.st_mode)) {
        ::close(descriptor);
        errno = EISDIR;
        return -1;
    }
    return descriptor;
}

}  // namespace

CFile::CFile(const char* path, UINT flags) : path_(path) {
    descriptor_ = OpenFile(path, flags);
    if (descriptor_ < 0) Fail("open");
}

CFile::~CFile() {
    CFile::Abort();
}

void CFile::Fail(const char* attempt) const {
    const int error = errno;
    zel::ThrowFileError(attempt, GetFilePath(), error);
}

BOOL CFile::Open(const char* path, UINT flags, CFileException** error) {
    CFile::Abort();
    path_ = path;
    descriptor_ = OpenFile(path, flags);
    if (descriptor_ >= 0) return TRUE;
    if (error) {
        try {
            Fail("open");
        } catch (CFileException* e) {
            *error = e;
        }
    }
    return FALSE;
}

std::size_t CFile::Read(void* buffer, std::size_t count) {
    auto* to = static_cast<char*>(buffer);
    std::size_t done = 0;
    while (done < count) {
        const ssize_t got = ::read(descriptor_, to + done, count - done);
        if (got == 0) break;
        if (got < 0) {
            if (errno == EINTR) continue;
            Fail("read");
        }
        done += static_cast<std::size_t>(got);
    }
    return done;
}

void CFile::Write(const void* bytes, std::size_t count) {
    const auto* from = static_cast<const char*>(bytes);
    while (count > 0) {
        const ssize_t put = ::write(descriptor_, from, count);
        if (put < 0) {
            if (errno == EINTR) continue;
            Fail("write");
        }
        from += put;
        count -= static_cast<std::size_t>(put);
    }
}

std::uint64_t CFile::Seek(std::int64_t offset, int from) {
    static constexpr int kWhence[] = {SEEK_SET, SEEK_CUR, SEEK_END};
    const off_t at = ::lseek(descriptor_, offset, kWhence[std::clamp(from, 0, 2)]);
    if (at < 0) Fail("seek in");
    return static_cast<std::uint64_t>(at);
}

std::uint64_t CFile::GetPosition() const {
    const off_t at = ::lseek(descriptor_, 0, SEEK_CUR);
    if (at < 0) Fail("find the position in");
    return static_cast<std::uint64_t>(at);
}

std::uint64_t CFile::GetLength() const {
    struct stat info {};
    if (::fstat(descriptor_, &info) != 0) Fail("find the length of");
    return static_cast<std::uint64_t>(info.st_size);
}

void CFile::SetLength(std::uint64_t length) {
    if (::ftruncate(descriptor_, static_cast<off_t>(length)) != 0) Fail("set the length of");
}

// Writes go straight to the system; there is nothing of our own to flush.
void CFile::Flush() {}

void CFile::Close() {
    if (descriptor_ < 0) return;
    const int result = ::close(descriptor_);
    descriptor_ = -1;
    if (result != 0 && errno != EINTR) Fail("close");
}

void CFile::Abort() {
    if (descriptor_ >= 0) ::close(descriptor_);
    descriptor_ = -1;
}

void CFile::Remove(const char* path) {
    if (::unlink(path) != 0) zel::ThrowFileError("remove", path, errno);
}

void CFile::Rename(const char* oldPath, const char* newPath) {
    if (::rename(oldPath, newPath) != 0) zel::ThrowFileError("rename", oldPath, errno);
}

CMemFile::CMemFile(UINT growBytes) {
    own_.reserve(growBytes);
}

CMemFile::CMemFile(const void* bytes, std::size_t count)
    : borrowed_(static_cast<const std::uint8_t*>(bytes)), size_(count) {}

void CMemFile::RefuseWhenBorrowed() const {
    if (borrowed_) zel::ThrowFileError("write", GetFilePath(), EACCES);
}

std::size_t CMemFile::Read(void* buffer, std::size_t count) {
    count = std::min(count, position_ < size_ ? size_ - position_ : 0);
    if (count > 0) std::memcpy(buffer, GetData() + position_, count);
    position_ += count;
    return count;
}

void CMemFile::Write(const void* bytes, std::size_t count) {
    RefuseWhenBorrowed();
    if (count == 0) return;
    const auto* from = static_cast<const std::uint8_t*>(bytes);
    if (position_ == own_.size()) {
        own_.insert(own_.end(), from, from + count);  // no clearing of what is overwritten at once
    } else {
        if (position_ + count > own_.size()) own_.resize(position_ + count);
        std::memcpy(own_.data() + position_, from, count);
    }
    position_ += count;
    size_ = own_.size();
}

std::uint64_t CMemFile::Seek(std::int64_t offset, int from) {
    const std::int64_t base = from == begin     ? 0
                              : from == current ? static_cast<std::int64_t>(position_)
                                                : static_cast<std::int64_t>(size_);
    if (offset < -base) zel::ThrowFileError("seek in", GetFilePath(), EINVAL);
    position_ = static_cast<std::size_t>(base + offset);
    return position_;
}

void CMemFile::SetLength(std::uint64_t length) {
    RefuseWhenBorrowed();
    own_.resize(length);
    size_ = own_.size();
}
