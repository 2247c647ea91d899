// Files on disk and in memory.
#pragma once

#include <zel/platform/Exception.h>
#include <zel/platform/Object.h>
#include <zel/platform/String.h>

#include <cstddef>
#include <cstdint>
#include <vector>

// A binary file, closed by its destructor. Every failure raises CFileException* that names the file and the
// reason.
class CFile : public CObject {
    DECLARE_DYNAMIC(CFile)
  public:
    enum OpenFlags : UINT {
        modeRead = 0x0000,
        modeWrite = 0x0001,
        modeReadWrite = 0x0002,
        shareDenyNone = 0x0040,
        modeNoTruncate = 0x2000,
        modeCreate = 0x1000,
        typeBinary = 0x8000,
    };
    enum SeekPosition { begin = 0, current = 1, end = 2 };

    CFile() = default;
    CFile(const char* path, UINT flags);
    CFile(const CFile&) = delete;
    CFile& operator=(const CFile&) = delete;
    ~CFile() override;

    // FALSE on failure; `error`, when given, is set to what the throwing constructor would have thrown (the
    // caller deletes it).
    virtual BOOL Open(const char* path, UINT flags, CFileException** error = nullptr);
    // Answers the bytes read, fewer than `count` only at the end of the file.
    virtual std::size_t Read(void* buffer, std::size_t count);
    virtual void Write(const void* bytes, std::size_t count);
    virtual std::uint64_t Seek(std::int64_t offset, int from);
    virtual std::uint64_t GetPosition() const;
    virtual std::uint64_t GetLength() const;
    virtual void SetLength(std::uint64_t length);
    virtual void Flush();
    virtual void Close();
    // Closes without raising anything.
    virtual void Abort();
    std::uint64_t SeekToEnd() { return Seek(0, end); }
    void SeekToBegin() { Seek(0, begin); }
    virtual CString GetFilePath() const { return path_; }

    static void Remove(const char* path);
    static void Rename(const char* oldPath, const char* newPath);

  private:
    [[noreturn]] void Fail(const char* attempt) const;

    int descriptor_ = -1;
    CString path_;
};

// A file in memory that grows as it is written, or a view of bytes that somebody else owns.
class CMemFile : public CFile {
    DECLARE_DYNAMIC(CMemFile)
  public:
    explicit CMemFile(UINT growBytes = 1024);
    // A view for reading; the bytes must outlive it, and writing raises CFileException*.
    CMemFile(const void* bytes, std::size_t count);

    std::size_t Read(void* buffer, std::size_t count) override;
    void Write(const void* bytes, std::size_t count) override;
    std::uint64_t Seek(std::int64_t offset, int from) override;
    std::uint64_t GetPosition() const override { return position_; }
    std::uint64_t GetLength() const override { return size_; }
    void SetLength(std::uint64_t length) override;
    void Flush() override {}
    void Close() override {}
    void Abort() override {}
    CString GetFilePath() const override { return "memory"; }

    const std::uint8_t* GetData() const { return borrowed_ ? borrowed_ : own_.data(); }

  private:
    void RefuseWhenBorrowed() const;

    std::vector<std::uint8_t> own_;
    const std::uint8_t* borrowed_ = nullptr;
    std::size_t size_ = 0;
    std::size_t position_ = 0;
};
