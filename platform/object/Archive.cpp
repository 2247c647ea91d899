#include <zel/platform/Archive.h>
#include <zel/platform/Exception.h>
#include <zel/platform/File.h>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <unordered_map>
#include <utility>

namespace {

constexpr WORD kNullTag = 0;
constexpr WORD kNewClassTag = 0xFFFF;
constexpr WORD kClassFlag = 0x8000;
constexpr WORD kBigTag = 0x7FFF;
constexpr DWORD kBigClassFlag = 0x80000000;
constexpr std::uint32_t kLastSmallIndex = 0x7FFE;
constexpr std::size_t kMostNesting = 500;
constexpr std::size_t kLongestClassName = 64;
constexpr std::size_t kLeastBuffer = 64;

}  // namespace

namespace zel {

// The index space that classes and objects share, counted from 1.
struct ArchiveMaps {
    struct Loaded {
        CObject* object = nullptr;
        CRuntimeClass* record = nullptr;
        UINT schema = 0;
    };
    std::unordered_map<const void*, std::uint32_t> indexes;  // storing
    std::vector<Loaded> loaded{{}};                          // loading; slot 0 is null
    std::uint32_t next = 1;
    std::vector<const CRuntimeClass*> classes;  // whose Serialize is running, for messages
};

}  // namespace zel

CArchive::CArchive(CFile* file, UINT mode, int bufferSize)
    : file_(file),
      loading_((mode & load) != 0),
      buffer_(std::max<std::size_t>(static_cast<std::size_t>(std::max(bufferSize, 0)), kLeastBuffer)),
      cursor_(buffer_.data()),
      bufferEnd_(buffer_.data() + buffer_.size()),
      filledEnd_(buffer_.data()),
      maps_(std::make_unique<zel::ArchiveMaps>()) {
    if (loading_) length_ = file->GetLength() - std::min(file->GetLength(), file->GetPosition());
}

CArchive::~CArchive() = default;

void CArchive::Fail(int cause, const std::string& why) const {
    std::string message = loading_ ? "Cannot read the archive" : "Cannot write the archive";
    if (!maps_->classes.empty())
        message += std::string(", in an object of class ") + maps_->classes.back()->m_lpszClassName;
    message += " at byte " + std::to_string(Offset()) + ": " + why;
    AfxThrowArchiveException(cause, message.c_str());
}

void CArchive::RequireMode(bool loading) const {
    if (!file_) Fail(CArchiveException::genericException, "the archive is closed");
    if (loading == loading_) return;
    if (loading) Fail(CArchiveException::writeOnly, "it was opened for storing");
    Fail(CArchiveException::readOnly, "it was opened for loading");
}

std::uint64_t CArchive::Offset() const {
    const auto buffered = static_cast<std::uint64_t>(cursor_ - buffer_.data());
    return passed_ + buffered;
}

std::uint64_t CArchive::BytesLeft() const {
    return length_ - std::min(length_, Offset());
}

void CArchive::CheckCount(std::int64_t count, std::size_t elementSize) const {
    if (count < 0) Fail(CArchiveException::badIndex, "the count " + std::to_string(count) + " is negative");
    const std::uint64_t most = BytesLeft() / std::max<std::size_t>(elementSize, 1);
    if (static_cast<std::uint64_t>(count) > most) {
        Fail(CArchiveException::endOfFile, std::to_string(count) + " elements are announced, and the " +
                                               std::to_string(BytesLeft()) + " bytes left cannot hold them");
    }
}

void CArchive::Flush() {
    if (loading_ || !file_) return;
    const auto count = static_cast<std::size_t>(cursor_ - buffer_.data());
    if (count > 0) file_->Write(buffer_.data(), count);
    passed_ += count;
    cursor_ = buffer_.data();
}

void CArchive::Close() {
    Flush();
    file_ = nullptr;
}

void CArchive::Abort() {
    file_ = nullptr;
}

void CArchive::Write(const void* bytes, std::size_t count) {
    RequireMode(false);
    if (count > static_cast<std::size_t>(bufferEnd_ - cursor_)) Flush();
    if (count >= buffer_.size()) {
        // Large blocks need no copy.
        file_->Write(bytes, count);
        passed_ += count;
        return;
    }
    if (count > 0) std::memcpy(cursor_, bytes, count);
    cursor_ += count;
}

void CArchive::Fill() {
    passed_ += static_cast<std::uint64_t>(filledEnd_ - buffer_.data());
    cursor_ = filledEnd_ = buffer_.data();
    filledEnd_ += file_->Read(buffer_.data(), buffer_.size());
}

std::size_t CArchive::Read(void* buffer, std::size_t count) {
    RequireMode(true);
    auto* to = static_cast<std::uint8_t*>(buffer);
    std::size_t done = 0;
    while (done < count) {
        if (cursor_ == filledEnd_) {
            if (count - done >= buffer_.size()) {
                passed_ += static_cast<std::uint64_t>(cursor_ - buffer_.data());
                cursor_ = filledEnd_ = buffer_.data();
                const std::size_t got = file_->Read(to + done, count - done);
                passed_ += got;
                return done + got;
            }
            Fill();
            if (cursor_ == filledEnd_) break;
        }
        const std::size_t step = std::min(count - done, static_cast<std::size_t>(filledEnd_ - cursor_));
        std::memcpy(to + done, cursor_, step);
        cursor_ += step;
        done += step;
    }
    return done;
}

// While it lives, what is read is part of something that is told as a whole.
class CArchive::Untraced {
  public:
    explicit Untraced(CArchive& archive)
        : archive_(archive), trace_(std::exchange(archive.trace_, nullptr)) {}
    ~Untraced() { archive_.trace_ = trace_; }
    Untraced(const Untraced&) = delete;
    Untraced& operator=(const Untraced&) = delete;

  private:
    CArchive& archive_;
    zel::ArchiveTrace* trace_;
};

// Without a buffer every value takes the path that tells of it.
void CArchive::SetTrace(zel::ArchiveTrace* trace) {
    trace_ = trace;
    buffer_.clear();
    cursor_ = bufferEnd_ = filledEnd_ = buffer_.data();
}

void CArchive::TraceFloat(std::uint64_t at, std::size_t size, double value) {
    char text[40];
    const auto end = std::to_chars(std::begin(text), std::end(text), value).ptr;
    trace_->Number(at, size, true, std::string(text, end));
}

void CArchive::TraceInteger(std::uint64_t at, std::size_t size, std::int64_t value) {
    trace_->Number(at, size, false, std::to_string(value));
}

void CArchive::ReadExact(void* buffer, std::size_t count) {
    const std::uint64_t at = Offset();
    ReadRaw(buffer, count);
    if (trace_) trace_->Block(at, static_cast<const std::uint8_t*>(buffer), count);
}

void CArchive::ReadRaw(void* buffer, std::size_t count) {
    const std::size_t got = Read(buffer, count);
    if (got < count) {
        Fail(CArchiveException::endOfFile,
             "the file ends where " + std::to_string(count - got) + " more bytes should be");
    }
}

// Counts and strings

void CArchive::WriteCount(std::uint64_t count) {
    if (count < 0xFFFF) {
        *this << static_cast<WORD>(count);
    } else {
        if (count > 0xFFFFFFFF)
            Fail(CArchiveException::badIndex, "a collection has more than 4294967295 elements");
        *this << static_cast<WORD>(0xFFFF) << static_cast<DWORD>(count);
    }
}

std::uint64_t CArchive::ReadCount() {
    WORD small = 0;
    *this >> small;
    if (small != 0xFFFF) return small;
    DWORD large = 0;
    *this >> large;
    return large;
}

CArchive& CArchive::operator<<(const CString& text) {
    const auto length = static_cast<std::size_t>(text.GetLength());
    if (length < 0xFF) {
        *this << static_cast<BYTE>(length);
    } else if (length < 0xFFFE) {
        *this << static_cast<BYTE>(0xFF) << static_cast<WORD>(length);
    } else {
        *this << static_cast<BYTE>(0xFF) << static_cast<WORD>(0xFFFF) << static_cast<DWORD>(length);
    }
    Write(static_cast<const char*>(text), length);
    return *this;
}

std::uint64_t CArchive::ReadStringLength(bool& wide) {
    BYTE small = 0;
    *this >> small;
    if (small < 0xFF) return small;
    WORD medium = 0;
    *this >> medium;
    if (medium == 0xFFFE && !wide) {
        wide = true;
        return ReadStringLength(wide);
    }
    if (medium != 0xFFFF) return medium;
    DWORD large = 0;
    *this >> large;
    return large;
}

namespace {

void AppendUtf8(std::string& text, std::uint32_t c) {
    if (c < 0x80) {
        text += static_cast<char>(c);
    } else if (c < 0x800) {
        text += static_cast<char>(0xC0 | c >> 6);
        text += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        text += static_cast<char>(0xE0 | c >> 12);
        text += static_cast<char>(0x80 | (c >> 6 & 0x3F));
        text += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        text += static_cast<char>(0xF0 | c >> 18);
        text += static_cast<char>(0x80 | (c >> 12 & 0x3F));
        text += static_cast<char>(0x80 | (c >> 6 & 0x3F));
        text += static_cast<char>(0x80 | (c & 0x3F));
    }
}

// Unpaired surrogates become the replacement character.
std::string FromUtf16(const std::vector<char16_t>& units) {
    constexpr std::uint32_t kReplacement = 0xFFFD;
    std::string text;
    for (std::size_t i = 0; i < units.size(); ++i) {
        std::uint32_t c = units[i];
        if (c >= 0xD800 && c < 0xDC00 && i + 1 < units.size() && units[i + 1] >= 0xDC00 &&
            units[i + 1] < 0xE000) {
            c = 0x10000 + ((c - 0xD800) << 10) + (units[++i] - 0xDC00u);
        } else if (c >= 0xD800 && c < 0xE000) {
            c = kReplacement;
        }
        AppendUtf8(text, c);
    }
    return text;
}

}  // namespace

CArchive& CArchive::operator>>(CString& text) {
    if (zel::ArchiveTrace* trace = trace_) {
        const std::uint64_t at = Offset();
        {
            const Untraced whole(*this);
            *this >> text;
        }
        trace->Text(at, text.GetString());
        return *this;
    }
    bool wide = false;
    const std::uint64_t length = ReadStringLength(wide);
    CheckCount(static_cast<std::int64_t>(length), wide ? 2 : 1);
    if (wide) {
        std::vector<char16_t> units(length);
        ReadExact(units.data(), units.size() * 2);
        text = FromUtf16(units);
    } else {
        std::string bytes(length, '\0');
        ReadExact(bytes.data(), bytes.size());
        text = std::move(bytes);
    }
    return *this;
}

// Objects

void CArchive::WriteIndexTag(std::uint32_t index, bool isClass) {
    if (index <= kLastSmallIndex) {
        *this << static_cast<WORD>(isClass ? kClassFlag | index : index);
    } else {
        *this << kBigTag << (isClass ? kBigClassFlag | index : index);
    }
}

void CArchive::WriteClassTag(const CRuntimeClass* record) {
    const auto known = maps_->indexes.find(record);
    if (known != maps_->indexes.end()) {
        WriteIndexTag(known->second, true);
        return;
    }
    const std::size_t length = std::strlen(record->m_lpszClassName);
    *this << kNewClassTag << static_cast<WORD>(record->m_wSchema) << static_cast<WORD>(length);
    Write(record->m_lpszClassName, length);
    maps_->indexes[record] = maps_->next++;
}

void CArchive::WriteObject(const CObject* object) {
    RequireMode(false);
    if (!object) {
        *this << kNullTag;
        return;
    }
    const auto known = maps_->indexes.find(object);
    if (known != maps_->indexes.end()) {
        WriteIndexTag(known->second, false);
        return;
    }
    const CRuntimeClass* record =
        dialect_ == Dialect::COMPLETE ? object->GetDocumentClass() : object->GetArchiveClass();
    if (!record->IsSerializable()) {
        Fail(CArchiveException::badClass,
             std::string("objects of class ") + record->m_lpszClassName + " cannot be stored");
    }
    // What would not be read again is not written; hosts read classic archives by themselves.
    if (dialect_ == Dialect::COMPLETE && maps_->classes.size() >= kMostNesting) FailForNesting();
    WriteClassTag(record);
    maps_->indexes[object] = maps_->next++;
    maps_->classes.push_back(record);
    const_cast<CObject*>(object)->Serialize(*this);
    maps_->classes.pop_back();
}

CObject* CArchive::ReadObject(const CRuntimeClass* expected) {
    return ReadTagged(expected, false);
}

std::unique_ptr<CObject> CArchive::ReadNewObject(const CRuntimeClass* expected) {
    return std::unique_ptr<CObject>(ReadTagged(expected, true));
}

void CArchive::CheckKind(const CRuntimeClass* record, const CRuntimeClass* expected) const {
    if (expected && !record->IsDerivedFrom(expected)) {
        Fail(CArchiveException::badClass, std::string("an object of class ") + record->m_lpszClassName +
                                              " stands where one of class " + expected->m_lpszClassName +
                                              " should be");
    }
}

CObject* CArchive::ReadTagged(const CRuntimeClass* expected, bool newOnly) {
    RequireMode(true);
    const std::uint64_t at = Offset();
    WORD tag = 0;
    DWORD index = 0;
    bool isClass = false;
    CRuntimeClass* newClass = nullptr;
    {
        const Untraced whole(*this);
        *this >> tag;
        index = tag & 0x7FFFu;
        isClass = (tag & kClassFlag) != 0;
        if (tag == kNewClassTag) {
            newClass = ReadNewClass();
        } else if (tag == kBigTag) {
            *this >> index;
            isClass = (index & kBigClassFlag) != 0;
            index &= ~kBigClassFlag;
        }
    }
    if (newClass) return ReadNewInstance(newClass, expected, at, true);
    if (!isClass && trace_) trace_->Reference(at, index);
    if (!isClass && index == 0) {
        if (newOnly) Fail(CArchiveException::badIndex, "an object is missing");
        return nullptr;
    }
    if (index >= maps_->loaded.size()) {
        Fail(CArchiveException::badIndex,
             "number " + std::to_string(index) + " names nothing that was read before");
    }
    const auto& entry = maps_->loaded[index];
    if (isClass) {
        if (!entry.record)
            Fail(CArchiveException::badIndex, "number " + std::to_string(index) + " is no class");
        schema_ = entry.schema;
        return ReadNewInstance(entry.record, expected, at, false);
    }
    if (!entry.object) Fail(CArchiveException::badIndex, "number " + std::to_string(index) + " is no object");
    if (newOnly)
        Fail(CArchiveException::badIndex, "an object that already has its place stands a second time");
    CheckKind(entry.object->GetRuntimeClass(), expected);
    return entry.object;
}

CRuntimeClass* CArchive::ReadNewClass() {
    WORD schema = 0;
    WORD length = 0;
    *this >> schema >> length;
    if (length == 0 || length > kLongestClassName) {
        Fail(CArchiveException::badClass, "a class name of " + std::to_string(length) + " bytes");
    }
    std::string name(length, '\0');
    ReadExact(name.data(), name.size());
    CRuntimeClass* record = CRuntimeClass::FromName(name.c_str());
    const bool foreign = record && (record->m_wSchema & DOCUMENT_SCHEMA) && dialect_ == Dialect::CLASSIC;
    if (!record || foreign || name.find('\0') != std::string::npos) {
        const bool printable =
            std::all_of(name.begin(), name.end(), [](char c) { return c > ' ' && c <= '~'; });
        Fail(CArchiveException::badClass,
             "no class \"" + (printable ? name : "(unprintable)") + "\" is known");
    }
    if (!record->IsSerializable())
        Fail(CArchiveException::badClass, "objects of class " + name + " cannot be stored");
    const UINT own = record->m_wSchema & ~(VERSIONABLE_SCHEMA | DOCUMENT_SCHEMA);
    if (schema != own && !(record->m_wSchema & VERSIONABLE_SCHEMA)) {
        Fail(CArchiveException::badSchema, "class " + name + " has schema " + std::to_string(schema) +
                                               " here, and this program knows schema " + std::to_string(own));
    }
    maps_->loaded.push_back({nullptr, record, schema});
    schema_ = schema;
    return record;
}

void CArchive::FailForNesting() const {
    Fail(CArchiveException::badIndex,
         "objects are nested more than " + std::to_string(kMostNesting) + " deep");
}

CObject* CArchive::ReadNewInstance(CRuntimeClass* record, const CRuntimeClass* expected, std::uint64_t at,
                                   bool newClass) {
    CheckKind(record, expected);
    if (maps_->classes.size() >= kMostNesting) FailForNesting();
    std::unique_ptr<CObject> object(record->CreateObject());
    // The object has its number before its data is read, so that what it holds can refer to it.
    const std::size_t index = maps_->loaded.size();
    if (trace_) trace_->BeginObject(at, record->m_lpszClassName, static_cast<std::uint32_t>(index), newClass);
    maps_->loaded.push_back({object.get(), nullptr, 0});
    maps_->classes.push_back(record);
    try {
        object->Serialize(*this);
    } catch (...) {
        maps_->classes.pop_back();
        maps_->loaded[index].object = nullptr;
        throw;
    }
    maps_->classes.pop_back();
    if (trace_) trace_->EndObject();
    return object.release();
}

UINT CArchive::GetObjectSchema() {
    return std::exchange(schema_, static_cast<UINT>(-1));
}
