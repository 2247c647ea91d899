#include <zel/platform/Exception.h>
#include <zel/platform/SafeFile.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace zel {
namespace {

// Where a chain of symbolic links ends, whether or not there is a file.
std::string Resolve(const std::string& target) {
    std::string path = target;
    for (int links = 0; links < 40; ++links) {
        char link[PATH_MAX];
        const ssize_t length = ::readlink(path.c_str(), link, sizeof link);
        if (length < 0) break;
        const std::string to(link, static_cast<std::size_t>(length));
        const std::size_t slash = path.rfind('/');
        path = to.starts_with('/') || slash == std::string::npos ? to : path.substr(0, slash + 1).append(to);
    }
    return path;
}

std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
}

// Gives a new file the permissions of the one whose place it takes, and its owner as far as we may.
bool TakeOver(int file, const std::string& path) {
    struct stat info {};
    if (::stat(path.c_str(), &info) == 0) {
        [[maybe_unused]] const int kept = ::fchown(file, info.st_uid, info.st_gid);
        return ::fchmod(file, info.st_mode & 07777) == 0;
    }
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return ::fchmod(file, 0666 & ~mask) == 0;
}

// Why what stands there must not be replaced; 0 when it may, or when there is nothing.
int ErrorOfReplacing(const std::string& path) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) return 0;
    if (S_ISDIR(info.st_mode)) return EISDIR;
    if (!S_ISREG(info.st_mode)) return ENOTSUP;  // a device or a pipe would be gone
    // Renaming needs no right to the file itself, but who protects a file means its content.
    return ::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0 ? 0 : errno;
}

}  // namespace

SafeFile::SafeFile(const std::string& target) : target_(target), resolved_(Resolve(target)) {
    const std::size_t slash = resolved_.rfind('/');
    const std::string name = slash == std::string::npos ? resolved_ : resolved_.substr(slash + 1);
    errno = name.empty() ? EISDIR : ErrorOfReplacing(resolved_);
    if (errno != 0) Fail("write");
    std::string pattern = FolderOf(resolved_) + "/." + name.substr(0, 200) + ".XXXXXX";
    descriptor_ = ::mkostemp(pattern.data(), O_CLOEXEC);
    if (descriptor_ < 0) Fail("write");
    temporary_ = pattern;
}

SafeFile::~SafeFile() {
    if (descriptor_ >= 0) ::close(descriptor_);
    if (!committed_) ::unlink(temporary_.c_str());
}

void SafeFile::Fail(const char* attempt) const {
    ThrowFileError(attempt, target_.c_str(), errno);
}

void SafeFile::Write(const void* bytes, std::size_t count) {
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

void SafeFile::Commit() {
    // Another writer may have replaced the file of that name: flush what the name stands for now.
    const int content = ::open(temporary_.c_str(), O_RDWR | O_CLOEXEC);
    if (content < 0) Fail("write");
    const bool flushed = TakeOver(content, resolved_) && ::fsync(content) == 0;
    const int error = errno;
    ::close(content);
    if (!flushed) {
        errno = error;
        Fail("write");
    }
    if (::rename(temporary_.c_str(), resolved_.c_str()) != 0) Fail("replace");
    committed_ = true;
    const int folder = ::open(FolderOf(resolved_).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder >= 0) {
        ::fsync(folder);  // a file system that cannot do this has the new file all the same
        ::close(folder);
    }
}

}  // namespace zel
