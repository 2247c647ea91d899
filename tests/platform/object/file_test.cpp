#include "Support.h"

#include <zel/platform/File.h>
#include <zel/platform/SafeFile.h>
#include <zel/platform/Warning.h>

#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
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

void Replace(const std::string& path, const std::string& content) {
    zel::SafeFile file(path);
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

TEST(SafeFile, KeepsTheOwner) {
    if (geteuid() != 0) GTEST_SKIP() << "only root gives files away";
    const TemporaryFolder folder;
    const std::string path = folder / "drawing";
    WriteOld(path);
    ASSERT_EQ(chown(path.c_str(), 65534, 65534), 0);
    Replace(path, "new");
    struct stat info {};
    ASSERT_EQ(stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_uid, 65534U);
    EXPECT_EQ(info.st_gid, 65534U);
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
