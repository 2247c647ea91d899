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

mode_t PermissionsFor(const std::string& path) {
    struct stat info {};
    if (::stat(path.c_str(), &info) == 0) return info.st_mode & 07777;
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

}  // namespace

SafeFile::SafeFile(const std::string& target) : target_(target), resolved_(Resolve(target)) {
    struct stat info {};
    if (::stat(resolved_.c_str(), &info) == 0 && S_ISDIR(info.st_mode)) {
        errno = EISDIR;
        Fail("write");
    }
    const std::size_t slash = resolved_.rfind('/');
    const std::string name = slash == std::string::npos ? resolved_ : resolved_.substr(slash + 1);
    if (name.empty()) {
        errno = EISDIR;
        Fail("write");
    }
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
    const bool flushed = ::fchmod(content, PermissionsFor(resolved_)) == 0 && ::fsync(content) == 0;
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
