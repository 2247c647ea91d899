#include "Support.h"

#include <zel/platform/File.h>
#include <zel/platform/SafeFile.h>
#include <zel/platform/Warning.h>

#include <atomic>
#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

using zel::test::Content;
using zel::test::MessageOf;
using zel::test::TemporaryFolder;
namespace fs = std::filesystem;

namespace {

void WriteOld(const std::string& path) {
    std::ofstream(path) << "old";
}

void Replace(const std::string& path, const std::string& content,
             zel::SafeFile::Kind kind = zel::SafeFile::Kind::DOCUMENT) {
    zel::SafeFile file(path, kind);
    file.Write(content.data(), content.size());
    file.Commit();
}

TEST(SafeFile, ReplacesWholeOrNotAtAll) {
    const TemporaryFolder folder;
    const std::string path = folder / "drawing";
    WriteOld(path);
    fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write);
    {
        zel::SafeFile file(path);
        file.Write("half", 4);
    }
    EXPECT_EQ(Content(path), "old");
    EXPECT_EQ(folder.FileCount(), 1U) << "the temporary file is gone";
    Replace(path, "new");
    EXPECT_EQ(Content(path), "new");
    EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST(SafeFile, KeepsSymbolicLinks) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "there");
    WriteOld(folder / "there/real");
    fs::create_symlink("there/real", folder / "link");
    Replace(folder / "link", "new");
    EXPECT_TRUE(fs::is_symlink(folder / "link"));
    EXPECT_EQ(Content(folder / "there/real"), "new");
}

// Renaming would get round both; the rights of an ordinary user are tried in a process of its own.
TEST(SafeFile, RespectsProtectionAndDevices) {
    const TemporaryFolder folder;
    const std::string path = folder / "protected", pipe = folder / "pipe";
    WriteOld(path);
    fs::permissions(folder / ".", fs::perms::all);
    fs::permissions(path, fs::perms::owner_read | fs::perms::others_read);
    const pid_t user = fork();
    if (user == 0) {
        if (geteuid() == 0 && (setegid(65534) != 0 || seteuid(65534) != 0)) _exit(2);
        const std::string message = MessageOf<CFileException>([&] { Replace(path, "new"); });
        _exit(message.find("denied") != std::string::npos ? 0 : 1);
    }
    int status = 0;
    waitpid(user, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(Content(path), "old");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_THAT(MessageOf<CFileException>([&] { Replace(pipe, "new"); }),
                testing::HasSubstr("not supported"));
    EXPECT_TRUE(fs::is_fifo(pipe));
}

struct stat StatusOf(const std::string& path) {
    struct stat info {};
    EXPECT_EQ(lstat(path.c_str(), &info), 0) << path;
    return info;
}

TEST(SafeFile, FollowsNoLinkThatOthersMayHavePlanted) {
    const TemporaryFolder folder;
    const std::string target = folder / "target", shared = folder / "shared/", link = shared + "link";
    WriteOld(target);
    fs::create_directory(shared);
    ASSERT_EQ(chmod(shared.c_str(), 01777), 0);
    fs::create_symlink(target, link);
    Replace(link, "own");
    EXPECT_EQ(Content(target), "own") << "one's own link leads somewhere";
    if (geteuid() == 0) {
        ASSERT_EQ(lchown(link.c_str(), 65534, 65534), 0);
        EXPECT_THAT(MessageOf<CFileException>([&] { Replace(link, "new"); }),
                    testing::AllOf(testing::HasSubstr(link), testing::HasSubstr("denied")));
        ASSERT_EQ(chown(shared.c_str(), 65534, 65534), 0);
        Replace(link, "own");  // the folder's owner may
    }
    Replace(link, "copy", zel::SafeFile::Kind::PRIVATE);
    EXPECT_EQ(Content(target), "own");
    EXPECT_EQ(Content(link), "copy");
    EXPECT_EQ(StatusOf(link).st_mode, static_cast<mode_t>(S_IFREG | 0600));
    fs::create_symlink("b", folder / "a");
    fs::create_symlink("a", folder / "b");
    EXPECT_THAT(MessageOf<CFileException>([&] { Replace(folder / "a", "new"); }),
                testing::HasSubstr("Too many levels"));
    EXPECT_TRUE(fs::is_symlink(folder / "a"));
}

// Also while others make files: nobody's rights are touched.
TEST(SafeFile, MakesFilesWithTheRightsOfTheProcess) {
    const TemporaryFolder folder;
    const mode_t before = umask(027);
    std::atomic<bool> done = false;
    std::atomic<int> open = 0;
    std::thread other([&] {
        for (int i = 0; !done; ++i) {
            const std::string path = folder / "other" + std::to_string(i % 8);
            WriteOld(path);
            if ((StatusOf(path).st_mode & 07777) != 0640) ++open;
            unlink(path.c_str());
        }
    });
    for (int i = 0; i < 300; ++i) {
        Replace(folder / "new", "new");
        if ((StatusOf(folder / "new").st_mode & 07777) != 0640) ++open;
        unlink((folder / "new").c_str());
    }
    done = true;
    other.join();
    umask(before);
    EXPECT_EQ(open, 0);
}

// Owner and group as far as the process may give them; what it cannot keep has no rights.
TEST(SafeFile, KeepsOwnerAndGroup) {
    if (geteuid() != 0) GTEST_SKIP() << "only root gives files away";
    const TemporaryFolder folder;
    fs::permissions(folder / ".", fs::perms::all);
    struct Case {
        uid_t user;
        gid_t also;  // a further group of the user
        uid_t owner;
        mode_t mode;
    };
    for (const auto& [user, also, owner, mode] :
         {Case{0, 0, 1, 06666}, Case{65534, 2, 65534, 02666}, Case{65534, 3, 65534, 0606}}) {
        const std::string path = folder / "drawing";
        WriteOld(path);
        ASSERT_EQ(chown(path.c_str(), 1, 2), 0);
        ASSERT_EQ(chmod(path.c_str(), 06666), 0);
        const pid_t child = fork();
        if (child == 0) {
            if (setgroups(1, &also) != 0 || setegid(user) != 0 || seteuid(user) != 0) _exit(2);
            Replace(path, "new");
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
        const struct stat info = StatusOf(path);
        EXPECT_EQ(info.st_uid, owner) << also;
        EXPECT_EQ(info.st_gid, also == 3 ? 65534U : 2U) << also;
        EXPECT_EQ(info.st_mode & 07777, mode) << also;
        unlink(path.c_str());
    }
}

TEST(SafeFile, NamesTheTargetThatCannotBeWritten) {
    const TemporaryFolder folder;
    const std::string missing = folder / "no/such/file";
    EXPECT_THAT(MessageOf<CFileException>([&] { zel::SafeFile file(missing); }),
                testing::AllOf(testing::HasSubstr(missing), testing::HasSubstr("No such file")));
    EXPECT_THAT(MessageOf<CFileException>([&] { zel::SafeFile file(folder / "."); }),
                testing::HasSubstr("directory"));
}

TEST(SafeFile, KeepsTheOldFileWhenTheDiskIsFull) {
    const TemporaryFolder folder;
    const std::string path = folder / "drawing";
    WriteOld(path);
    std::string message;
    {
        const zel::test::FullDisk full(100'000);
        message = MessageOf<CFileException>([&] { Replace(path, std::string(1'000'000, 'x')); });
    }
    EXPECT_THAT(message, testing::HasSubstr(path));
    EXPECT_EQ(Content(path), "old");
    EXPECT_EQ(folder.FileCount(), 1U);
}

TEST(CFile, ReadsWritesAndSeeks) {
    const TemporaryFolder folder;
    const std::string path = folder / "file";
    {
        CFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite);
        file.Write("0123456789", 10);
    }
    CFile file(path.c_str(), CFile::modeReadWrite);
    char buffer[16] = {};
    EXPECT_EQ(file.Seek(-4, CFile::end), 6U);
    EXPECT_EQ(file.Read(buffer, sizeof buffer), 4U);
    EXPECT_STREQ(buffer, "6789");
    file.SetLength(3);
    EXPECT_EQ(file.GetLength(), 3U);
    CFileException* error = nullptr;
    CFile other;
    EXPECT_FALSE(other.Open((folder / "none").c_str(), CFile::modeRead, &error));
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->m_cause, CFileException::fileNotFound);
    error->Delete();
}

// Hosts give buffers of their own: not a byte behind them is written.
TEST(Exceptions, FillBuffersOfAnySize) {
    const CException exception("0123456789"), empty;
    for (UINT size = 0; size < 14; ++size) {
        std::string buffer(20, '#');
        EXPECT_EQ(exception.GetErrorMessage(buffer.data(), size), size > 0);
        const std::string expected = size > 0 ? std::string("0123456789").substr(0, size - 1) + '\0' : "";
        EXPECT_EQ(buffer, expected + std::string(20 - expected.size(), '#')) << size;
    }
    char none = '#';
    EXPECT_FALSE(empty.GetErrorMessage(&none, 1));
    EXPECT_EQ(none, '#');
}

TEST(CMemFile, GrowsAndGuardsBorrowedBytes) {
    CMemFile file;
    file.Write("abc", 3);
    file.Seek(5, CFile::begin);
    file.Write("x", 1);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(file.GetData()), file.GetLength()),
              std::string("abc\0\0x", 6));
    CMemFile view("fixed", 5);
    EXPECT_NE(MessageOf<CFileException>([&] { view.Write("y", 1); }), "");
    EXPECT_NE(MessageOf<CFileException>([&] { view.Seek(-1, CFile::begin); }), "");
}

TEST(Warning, GivesEachMessageOnce) {
    std::vector<std::string> given;
    const auto previous =
        zel::SetWarningHandler([&](const std::string& message) { given.push_back(message); });
    zel::Warn("a font is missing (test)");
    zel::Warn("a font is missing (test)");
    zel::SetWarningHandler(previous);
    EXPECT_EQ(given, std::vector<std::string>{"a font is missing (test)"});
}

}  // namespace
