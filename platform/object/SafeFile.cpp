#include <zel/platform/Exception.h>
#include <zel/platform/SafeFile.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

namespace zel {
namespace {

constexpr int kMostLinks = 40;  // as the kernel has it
constexpr mode_t kPrivate = 0600;

std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
}

// Others can put links where all may write; they would choose what we replace.
bool IsTrusted(const struct stat& link, const std::string& path) {
    struct stat folder {};
    if (::stat(FolderOf(path).c_str(), &folder) != 0) return false;
    constexpr mode_t kShared = S_ISVTX | S_IWOTH;
    return (folder.st_mode & kShared) != kShared || link.st_uid == ::geteuid() ||
           link.st_uid == folder.st_uid;
}

// Where the symbolic link at `path` points to; empty when there is none. Sets errno, to 0 where nothing is
// wrong.
std::string LinkAt(const std::string& path) {
    errno = 0;
    // What is looked at and what is read are the same link, whatever stands there the next moment.
    const int link = ::open(path.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC);
    std::string to;
    struct stat info {};
    if (link >= 0 && ::fstat(link, &info) == 0 && S_ISLNK(info.st_mode)) {
        char text[PATH_MAX];
        const ssize_t length = ::readlinkat(link, "", text, sizeof text);
        if (length > 0) to.assign(text, static_cast<std::size_t>(length));
        if (length > 0 && !IsTrusted(info, path)) errno = EACCES;
    } else {
        errno = 0;  // no link, and what else may be wrong is found by whoever writes there
    }
    if (link >= 0) {
        const int error = errno;
        ::close(link);
        errno = error;
    }
    return to;
}

// Where a chain of symbolic links ends, whether or not there is a file. Sets errno.
std::string Resolve(const std::string& target) {
    std::string path = target;
    for (int links = 0; links <= kMostLinks; ++links) {
        const std::string to = LinkAt(path);
        if (errno != 0 || to.empty()) return path;
        const std::size_t slash = path.rfind('/');
        // A link says where to go from its own folder.
        path.erase(to.starts_with('/') || slash == std::string::npos ? 0 : slash + 1);
        path += to;
    }
    errno = ELOOP;
    return path;
}

// What the process takes from the rights of its new files. Setting it, which is the other way to learn it,
// would open the files that other threads make in this moment.
mode_t Mask() {
    std::ifstream status("/proc/self/status");
    std::string name;
    mode_t mask = 077;
    while (status >> name && name != "Umask:")
        status.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
    status >> std::oct >> mask;
    return mask;
}

// Gives a new file the permissions of the one whose place it takes, and its group and owner as far as we may.
bool TakeOver(int file, const std::string& path) {
    struct stat old {
    }, own{};
    if (::lstat(path.c_str(), &old) != 0 || !S_ISREG(old.st_mode)) return ::fchmod(file, 0666 & ~Mask()) == 0;
    mode_t mode = old.st_mode & 07777;
    if (::fchown(file, old.st_uid, old.st_gid) != 0) {
        [[maybe_unused]] const int group = ::fchown(file, static_cast<uid_t>(-1), old.st_gid);
        if (::fstat(file, &own) != 0) return false;
        if (own.st_uid != old.st_uid) mode &= ~static_cast<mode_t>(S_ISUID);  // it would lend our rights
        if (own.st_gid != old.st_gid) mode &= ~static_cast<mode_t>(S_ISGID | S_IRWXG);
    }
    return ::fchmod(file, mode) == 0;
}

// Why what stands there must not be replaced; 0 when it may, or when there is nothing.
int ErrorOfReplacing(const std::string& path) {
    struct stat info {};
    if (::lstat(path.c_str(), &info) != 0) return 0;
    if (S_ISLNK(info.st_mode)) return 0;  // taken away, and not followed
    if (S_ISDIR(info.st_mode)) return EISDIR;
    if (!S_ISREG(info.st_mode)) return ENOTSUP;  // a device or a pipe would be gone
    // Renaming needs no right to the file itself, but who protects a file means its content.
    return ::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0 ? 0 : errno;
}

}  // namespace

SafeFile::SafeFile(const std::string& target, Kind kind) : kind_(kind), target_(target), resolved_(target) {
    errno = 0;
    if (kind == Kind::DOCUMENT) resolved_ = Resolve(target);
    if (errno != 0) Fail("write");
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
    const int content = ::open(temporary_.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC);
    if (content < 0) Fail("write");
    const bool owned =
        kind_ == Kind::PRIVATE ? ::fchmod(content, kPrivate) == 0 : TakeOver(content, resolved_);
    const bool flushed = owned && ::fsync(content) == 0;
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
