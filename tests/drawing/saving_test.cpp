// Accidents while a document is saved: the old file is whole, or the new one.
#include "Support.h"
#include "WatchedCalls.h"

#include <zel/zel.h>

#include <csignal>
#include <cstdio>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using zel::test::Content;
using zel::test::MessageOf;
namespace fs = std::filesystem;

class Saving : public testing::Test {
  protected:
    Saving() {
        old_.Add(new Zel2Rect);
        auto* series = new Zel2PointArray;
        for (int i = 0; i < 20000; ++i) series->Append(i, i % 7);
        changed_.Add(series);
        zel::SaveDocument(changed_, path_.c_str());
        after_ = Content(path_);
        zel::SaveDocument(old_, path_.c_str());
        before_ = Content(path_);
    }
    // Puts the old document back, and clears away what dead savers left.
    void Restore() {
        for (const auto& entry : fs::directory_iterator(folder_ / ".")) fs::remove(entry.path());
        std::ofstream(path_, std::ios::binary) << before_;
    }
    // Runs a process that saves the changed document; `first` runs in it before.
    template <class First>
    pid_t StartSaver(First first) {
        std::fflush(nullptr);
        const pid_t saver = fork();
        if (saver != 0) return saver;
        first();
        zel::SaveDocument(changed_, path_.c_str());
        _exit(0);
    }

    const zel::test::TemporaryFolder folder_;
    const std::string path_ = folder_ / "drawing.zel";
    Zel2Main old_, changed_;
    std::string before_, after_;
};

// Killed before, within and after each call with which a save touches the disk: at every write, flush and
// renaming.
TEST_F(Saving, SurvivesDeathAtEveryCall) {
    const zel::test::WatchedCalls calls;
    const auto run = [&](std::size_t end) {
        Restore();
        const pid_t saver = StartSaver([&] { calls.Watch(end); });
        int status = 0;
        waitpid(saver, &status, 0);
        return WIFSIGNALED(status);
    };
    EXPECT_FALSE(run(SIZE_MAX));
    EXPECT_EQ(Content(path_), after_);
    const std::string whole = calls.Names();
    // What is flushed before the renaming survives a power cut too; the folder is flushed after it.
    EXPECT_THAT(whole, testing::MatchesRegex(
                           "open close mkostemp open (write )+close open fchown fchmod fsync close rename "
                           "open fsync close close "));
    std::size_t old = 0, renewed = 0;
    for (std::size_t end = 0; run(end); ++end) {
        const std::string content = Content(path_);
        if (content == before_) ++old;
        if (content == after_) ++renewed;
        ASSERT_EQ(old + renewed, end + 1) << "neither the old file nor the new one after death " << end;
    }
    EXPECT_GT(old, renewed);
    EXPECT_GT(renewed, 0U);
    std::printf("%zu saves interrupted: %zu times the old file, %zu times the new one\n", old + renewed, old,
                renewed);
}

// Killed in the middle of a write, after many numbers of bytes.
TEST_F(Saving, SurvivesDeathWithinAWrite) {
    int deaths = 0;
    for (std::size_t size = 0; size <= after_.size() + 4096; size += 3917) {
        Restore();
        const pid_t saver = StartSaver([&] {
            const rlimit limit{size, size};
            setrlimit(RLIMIT_FSIZE, &limit);
            std::signal(SIGXFSZ, SIG_DFL);
        });
        int status = 0;
        waitpid(saver, &status, 0);
        const bool died = WIFSIGNALED(status);
        deaths += died ? 1 : 0;
        EXPECT_EQ(died, size < after_.size()) << size;
        EXPECT_EQ(Content(path_), died ? before_ : after_) << size;
    }
    std::printf("%d saves interrupted within a write, nothing lost\n", deaths);
}

TEST_F(Saving, SurvivesAFullDisk) {
    for (const std::size_t room :
         {std::size_t{0}, std::size_t{39}, std::size_t{40}, after_.size() / 2, after_.size() - 1}) {
        std::string message;
        {
            const zel::test::FullDisk disk(room);
            message = MessageOf<zel::FileError>([&] { zel::SaveDocument(changed_, path_.c_str()); });
        }
        EXPECT_THAT(message, testing::HasSubstr("\"" + path_ + "\"")) << room << ": not the file beside it";
        EXPECT_EQ(Content(path_), before_) << room;
        EXPECT_EQ(folder_.FileCount(), 1U) << "nothing is left beside it";
    }
    zel::SaveDocument(changed_, path_.c_str());
    EXPECT_EQ(Content(path_), after_) << "the drawing is as it was";
}

TEST_F(Saving, GoesThroughLinksAndKeepsPermissions) {
    fs::permissions(path_, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    fs::create_symlink("drawing.zel", folder_ / "link.zel");
    zel::SaveDocument(changed_, (folder_ / "link.zel").c_str());
    EXPECT_TRUE(fs::is_symlink(folder_ / "link.zel"));
    EXPECT_EQ(Content(path_), after_);
    struct stat info {};
    ASSERT_EQ(stat(path_.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0640U);
}

}  // namespace
