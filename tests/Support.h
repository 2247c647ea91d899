// What several tests need.
#pragma once

#include <zel/platform/Exception.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <sys/resource.h>

namespace zel::test {

// A folder of its own for a test, gone afterwards.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "zel-test-XXXXXX").string();
        path_ = mkdtemp(pattern.data());
    }
    ~TemporaryFolder() { std::filesystem::remove_all(path_); }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    std::string operator/(const std::string& name) const { return (path_ / name).string(); }
    std::size_t FileCount() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(path_), {}));
    }

  private:
    std::filesystem::path path_;
};

// No file of this process grows beyond so many bytes: a disk that fills up while a file is written.
class FullDisk {
  public:
    explicit FullDisk(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit small{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

  private:
    rlimit before_{};
    void (*handler_)(int);
};

inline std::string Content(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// The message of the exception that `action` throws, by pointer when it is one of the framework's; empty, and
// a failure, when it is none of that kind.
template <class Exception, class Action>
std::string MessageOf(Action action) {
    using Thrown = std::conditional_t<std::is_base_of_v<CException, Exception>, Exception*, const Exception&>;
    try {
        action();
    } catch (Thrown e) {
        if constexpr (std::is_pointer_v<Thrown>) {
            return TakeMessage(e);
        } else {
            return e.what();
        }
    } catch (CException* e) {
        ADD_FAILURE() << "another exception: " << TakeMessage(e);
    } catch (const std::exception& e) {
        ADD_FAILURE() << "another exception: " << e.what();
    }
    return {};
}

// All that was written on a recording device, without its places.
inline std::string Letters(const std::string& recorded) {
    std::string letters;
    for (std::size_t at = recorded.find("text "); at != std::string::npos;
         at = recorded.find("\ntext ", at + 1)) {
        const std::size_t quote = recorded.find('"', at);
        letters += recorded.substr(quote + 1, recorded.find('"', quote + 1) - quote - 1);
    }
    return letters;
}

// What a program prints, standard error included, and its exit code.
struct Output {
    std::string text;
    int code = -1;
};
inline Output RunProgram(const std::string& command) {
    Output output;
    FILE* pipe = popen((command + " 2>&1").c_str(), "r");
    if (!pipe) return output;
    char block[4096];
    while (const std::size_t count = fread(block, 1, sizeof block, pipe)) output.text.append(block, count);
    const int status = pclose(pipe);
    output.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return output;
}

}  // namespace zel::test
