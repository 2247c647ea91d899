// Binary streams of values and objects.
#pragma once

#include <zel/platform/Geometry.h>
#include <zel/platform/Object.h>
#include <zel/platform/String.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <memory>
#include <type_traits>
#include <vector>

class CFile;

namespace zel {

struct ArchiveMaps;

// Is told of everything that is read from an archive, with its offset in the stream: the eye of programs that
// examine broken files.
class ArchiveTrace {
  public:
    virtual ~ArchiveTrace() = default;
    // A number of `size` bytes, in decimal; a text.
    virtual void Number(std::uint64_t offset, std::size_t size, bool isFloat, const std::string& value) = 0;
    virtual void Text(std::uint64_t offset, const std::string& text) = 0;
    // A run of bytes that the reader takes as they are.
    virtual void Block(std::uint64_t offset, const std::uint8_t* bytes, std::size_t count) = 0;
    // An object begins; `number` is its own in the index space of the stream, `newClass` whether its class
    // is named here for the first time.
    virtual void BeginObject(std::uint64_t offset, const char* className, std::uint32_t number,
                             bool newClass) = 0;
    virtual void EndObject() = 0;
    // A null or an object that was read before; the number is 0 for null.
    virtual void Reference(std::uint64_t offset, std::uint32_t number) = 0;
};

}  // namespace zel

// Stores values and objects in a file, or loads them from it. All values are little endian. Objects are
// preceded by a tag: 0 for null, 0xFFFF for the first object of a class (schema, name and object follow),
// 0x8000 | index for an object of a class seen before, an index for an object seen before, 0x7FFF before a
// 32-bit tag. Classes and objects share one index space, counted from 1 in order of appearance.
//
// Nothing in a stream is believed: a count is checked against the bytes that are left before memory is taken
// for it, nesting is bounded, and every breach of the format raises CArchiveException* that names the class
// being read and the offset. The file must outlive the archive; an archive that is not closed discards what
// it has not written.
class CArchive {
  public:
    enum Mode : UINT { store = 0, load = 1 };
    // CLASSIC is the stream that host programs know; in COMPLETE every class keeps all of its state.
    enum class Dialect { CLASSIC, COMPLETE };
    static constexpr int kNewestVersion = 0x7FFFFFFF;

    CArchive(CFile* file, UINT mode, int bufferSize = 1 << 16);
    CArchive(const CArchive&) = delete;
    CArchive& operator=(const CArchive&) = delete;
    ~CArchive();

    bool IsStoring() const { return !loading_; }
    bool IsLoading() const { return loading_; }
    Dialect GetDialect() const { return dialect_; }
    // `version` is that of the complete dialect's layouts in an archive that is read; what is stored is
    // always of the newest.
    void SetDialect(Dialect dialect, int version = kNewestVersion) {
        dialect_ = dialect;
        version_ = version;
    }
    int GetDialectVersion() const { return version_; }
    CFile* GetFile() const { return file_; }

    void Write(const void* bytes, std::size_t count);
    // Answers the bytes read, fewer than `count` only at the end of the file.
    std::size_t Read(void* buffer, std::size_t count);
    // Raises CArchiveException* (endOfFile) when `count` bytes are not there.
    void ReadExact(void* buffer, std::size_t count);

    // Writes what is buffered into the file; Close does so too and lets go of the file.
    void Flush();
    void Close();
    // Lets go of the file without writing.
    void Abort();

    // Null is stored as such. Throws CArchiveException* for an object that cannot be stored.
    void WriteObject(const CObject* object);
    // Reads an object of any class, or of `expected` and its subclasses. The archive keeps track of it but
    // does not own it: whoever reads it first does. A back reference answers an object that has been read
    // before.
    CObject* ReadObject(const CRuntimeClass* expected);
    // Reads an object that is not null and was never read before, so that the reader may own it.
    std::unique_ptr<CObject> ReadNewObject(const CRuntimeClass* expected);
    // The schema of the object whose Serialize is running, once; UINT(-1) when asked again or for no object.
    UINT GetObjectSchema();

    void WriteCount(std::uint64_t count);
    std::uint64_t ReadCount();

    // The bytes of the stream read or written so far.
    std::uint64_t Offset() const;
    // At most so many bytes are left to read.
    std::uint64_t BytesLeft() const;
    // Raises CArchiveException* when `count` is negative or so many elements cannot be in the bytes that are
    // left.
    void CheckCount(std::int64_t count, std::size_t elementSize) const;

    template <class T>
    requires(std::is_arithmetic_v<T> && !std::is_same_v<T, bool> && !std::is_same_v<T, long double>) CArchive&
    operator<<(T value) {
        if (bufferEnd_ - cursor_ < static_cast<std::ptrdiff_t>(sizeof value) || loading_) {
            Write(&value, sizeof value);
        } else {
            std::memcpy(cursor_, &value, sizeof value);
            cursor_ += sizeof value;
        }
        return *this;
    }
    template <class T>
    requires(std::is_arithmetic_v<T> && !std::is_same_v<T, bool> && !std::is_same_v<T, long double>) CArchive&
    operator>>(T& value) {
        if (filledEnd_ - cursor_ < static_cast<std::ptrdiff_t>(sizeof value) || !loading_) {
            ReadSlowly(value);
        } else {
            std::memcpy(&value, cursor_, sizeof value);
            cursor_ += sizeof value;
        }
        return *this;
    }
    CArchive& operator<<(const CString& text);
    CArchive& operator>>(CString& text);
    CArchive& operator<<(const POINT& p) { return *this << p.x << p.y; }
    CArchive& operator>>(POINT& p) { return *this >> p.x >> p.y; }
    CArchive& operator<<(const SIZE& s) { return *this << s.cx << s.cy; }
    CArchive& operator>>(SIZE& s) { return *this >> s.cx >> s.cy; }
    CArchive& operator<<(const RECT& r) { return *this << r.left << r.top << r.right << r.bottom; }
    CArchive& operator>>(RECT& r) { return *this >> r.left >> r.top >> r.right >> r.bottom; }
    CArchive& operator<<(const CObject* object) {
        WriteObject(object);
        return *this;
    }

    // Loading, before anything is read: `trace` (borrowed) is told of all that is read from here on.
    void SetTrace(zel::ArchiveTrace* trace);

    // Raises CArchiveException* with `why` in a sentence that names the class being read or written and the
    // offset.
    [[noreturn]] void Fail(int cause, const std::string& why) const;

  private:
    // The framework's own streams are little endian; so are the machines that this library runs on.
    static_assert(std::endian::native == std::endian::little);

    class Untraced;

    template <class T>
    void ReadSlowly(T& value) {
        const std::uint64_t at = Offset();
        ReadRaw(&value, sizeof value);
        if (!trace_) return;
        if constexpr (std::is_floating_point_v<T>) {
            TraceFloat(at, sizeof value, static_cast<double>(value));
        } else {
            TraceInteger(at, sizeof value, static_cast<std::int64_t>(value));
        }
    }
    void ReadRaw(void* buffer, std::size_t count);
    void TraceFloat(std::uint64_t at, std::size_t size, double value);
    void TraceInteger(std::uint64_t at, std::size_t size, std::int64_t value);
    void Fill();
    void WriteClassTag(const CRuntimeClass* record);
    void WriteIndexTag(std::uint32_t index, bool isClass);
    CObject* ReadTagged(const CRuntimeClass* expected, bool newOnly);
    CRuntimeClass* ReadNewClass();
    CObject* ReadNewInstance(CRuntimeClass* record, const CRuntimeClass* expected, std::uint64_t at,
                             bool newClass);
    [[noreturn]] void FailForNesting() const;
    void CheckKind(const CRuntimeClass* record, const CRuntimeClass* expected) const;
    std::uint64_t ReadStringLength(bool& wide);
    void RequireMode(bool loading) const;

    CFile* file_;
    bool loading_;
    Dialect dialect_ = Dialect::CLASSIC;
    int version_ = kNewestVersion;
    std::vector<std::uint8_t> buffer_;
    std::uint8_t* cursor_;
    std::uint8_t* bufferEnd_;
    std::uint8_t* filledEnd_;   // loading: the end of the bytes read ahead
    std::uint64_t passed_ = 0;  // bytes that have left the buffer
    std::uint64_t length_ = 0;  // loading: bytes of the file from where the archive began
    std::unique_ptr<zel::ArchiveMaps> maps_;
    UINT schema_ = static_cast<UINT>(-1);
    zel::ArchiveTrace* trace_ = nullptr;
};
