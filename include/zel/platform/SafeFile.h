// Replacing a file whole or not at all.
#pragma once

#include <cstddef>
#include <string>

namespace zel {

// A new file beside its target, which takes the target's place when it is complete.
//
// The temporary file lies in the target's folder, is flushed to disk by Commit and renamed over the target,
// and the folder is flushed too: after a crash there is the old file or the new one. Until then nobody else
// can read it. Other names of the target (hard links) keep the old file. A target that may not be written, a
// device or a pipe is refused. Without Commit the destructor removes the temporary file and the target is
// untouched. All failures raise CFileException* that names the target.
class SafeFile {
  public:
    enum class Kind {
        // What a person names. A target that is a symbolic link stays one and what it points to is replaced,
        // except for links of others in folders that all may write to: these are refused, as the kernel
        // refuses to follow them. The new file has the permissions of the old one, its group, and its owner
        // where this process may give them; what it cannot keep has no rights. Files that are new have those
        // of the process.
        DOCUMENT,
        // What a program keeps for itself beside other things. No link is followed, and only the user may
        // read
        // or write it.
        PRIVATE
    };
    explicit SafeFile(const std::string& target, Kind kind = Kind::DOCUMENT);
    SafeFile(const SafeFile&) = delete;
    SafeFile& operator=(const SafeFile&) = delete;
    ~SafeFile();

    // Where another writer may put the content instead of using Write.
    const std::string& TemporaryPath() const { return temporary_; }
    void Write(const void* bytes, std::size_t count);
    void Commit();

  private:
    [[noreturn]] void Fail(const char* attempt) const;

    Kind kind_;
    std::string target_;    // as it was given
    std::string resolved_;  // links followed
    std::string temporary_;
    int descriptor_ = -1;
    bool committed_ = false;
};

}  // namespace zel
