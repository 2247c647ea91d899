#include "core/ArchiveFields.h"
#include "drawing/DocumentHeader.h"
#include "platform/object/ByValue.h"

#include <zel/ZelDocument.h>
#include <zel/platform/Archive.h>
#include <zel/platform/Exception.h>
#include <zel/platform/File.h>
#include <zel/platform/SafeFile.h>

#include <algorithm>
#include <string>
#include <vector>
#include <zlib.h>

namespace zel {
namespace {

// Adds a block of any size to a checksum.
std::uint32_t AddToChecksum(std::uint32_t checksum, const void* bytes, std::size_t count) {
    return static_cast<std::uint32_t>(crc32_z(checksum, static_cast<const Bytef*>(bytes), count));
}

// Counts and sums up what is written through it.
class ChecksummedFile : public CFile {
  public:
    // `name` stands for the path in exceptions.
    ChecksummedFile(const char* path, const char* name) : CFile(path, modeReadWrite), name_(name) {}
    CString GetFilePath() const override { return name_; }
    void Write(const void* bytes, std::size_t count) override {
        checksum_ = AddToChecksum(checksum_, bytes, count);
        length_ += count;
        CFile::Write(bytes, count);
    }
    std::uint32_t Checksum() const { return checksum_; }
    std::uint64_t Length() const { return length_; }

  private:
    CString name_;
    std::uint32_t checksum_ = 0;
    std::uint64_t length_ = 0;
};

[[noreturn]] void Refuse(const std::string& source, const std::string& why) {
    AfxThrowArchiveException(CArchiveException::endOfFile,
                             ("Cannot read the document \"" + source + "\": " + why).c_str());
}

DocumentHeader ReadHeader(CFile& file, const std::string& source) {
    DocumentHeader::Bytes bytes{};
    if (file.Read(bytes.data(), bytes.size()) != bytes.size()) {
        Refuse(source,
               "it has " + std::to_string(file.GetLength()) + " bytes, less than a document's header");
    }
    return DocumentHeader::Decode(bytes, source);
}

// The whole content is summed up before any of it is believed.
void CheckContent(CFile& file, const DocumentHeader& header, const std::string& source) {
    const std::uint64_t present = file.GetLength() - DocumentHeader::kSize;
    if (present != header.contentLength) {
        Refuse(source, "its header promises " + std::to_string(header.contentLength) +
                           " bytes of content, and " + std::to_string(present) + " are there");
    }
    std::vector<std::uint8_t> block(1 << 18);
    std::uint32_t checksum = 0;
    while (const std::size_t count = file.Read(block.data(), block.size())) {
        checksum = AddToChecksum(checksum, block.data(), count);
    }
    if (checksum != header.contentChecksum) Refuse(source, "its content is damaged (the checksum differs)");
}

std::unique_ptr<Zel2Main> ReadContent(CFile& file, const DocumentHeader& header) {
    file.Seek(DocumentHeader::kSize, CFile::begin);
    CArchive ar(&file, CArchive::load);
    ar.SetDialect(CArchive::Dialect::COMPLETE, static_cast<int>(header.version));
    std::unique_ptr<Zel2Main> drawing = ReadOwned<Zel2Main>(ar);
    if (ar.BytesLeft() > 0)
        ar.Fail(CArchiveException::genericException,
                std::to_string(ar.BytesLeft()) + " bytes follow the drawing");
    drawing->SetRules(header.rules);
    ar.Close();
    return drawing;
}

std::unique_ptr<Zel2Main> Load(CFile& file, const std::string& source) {
    const DocumentHeader header = ReadHeader(file, source);
    CheckContent(file, header, source);
    return ReadContent(file, header);
}

void StoreComplete(CFile& file, Zel2& object) {
    CArchive ar(&file, CArchive::store);
    ar.SetDialect(CArchive::Dialect::COMPLETE);
    ar.WriteObject(&object);
    ar.Close();
}

}  // namespace

void SaveDocument(Zel2Main& drawing, const char* path) {
    ByValue([&] {
        SafeFile target(path);
        ChecksummedFile file(target.TemporaryPath().c_str(), path);
        file.Seek(DocumentHeader::kSize, CFile::begin);
        StoreComplete(file, drawing);

        DocumentHeader header;
        header.rules = drawing.Rules();
        header.contentLength = file.Length();
        header.contentChecksum = file.Checksum();
        const DocumentHeader::Bytes bytes = header.Encode();
        file.Seek(0, CFile::begin);
        file.CFile::Write(bytes.data(), bytes.size());
        file.Close();
        target.Commit();
    });
}

std::vector<std::uint8_t> DocumentBytes(Zel2Main& drawing) {
    return ByValue([&] {
        CMemFile content(1 << 16);
        StoreComplete(content, drawing);
        DocumentHeader header;
        header.rules = drawing.Rules();
        header.contentLength = content.GetLength();
        header.contentChecksum = AddToChecksum(0, content.GetData(), content.GetLength());
        const DocumentHeader::Bytes begin = header.Encode();
        std::vector<std::uint8_t> bytes(begin.size() + content.GetLength());
        std::copy(begin.begin(), begin.end(), bytes.begin());
        std::copy_n(content.GetData(), content.GetLength(), bytes.data() + begin.size());
        return bytes;
    });
}

std::unique_ptr<Zel2Main> LoadDocument(const char* path) {
    return ByValue([&] {
        CFile file(path, CFile::modeRead);
        return Load(file, path);
    });
}

std::unique_ptr<Zel2Main> LoadDocument(const void* bytes, std::size_t size, const char* name) {
    return ByValue([&] {
        CMemFile file(bytes, size);
        return Load(file, name);
    });
}

DocumentFacts CheckDocument(const char* path) {
    return ByValue([&] {
        CFile file(path, CFile::modeRead);
        const DocumentHeader header = ReadHeader(file, path);
        CheckContent(file, header, path);
        return DocumentFacts{static_cast<int>(header.version), header.rules, header.contentLength};
    });
}

void TraceDrawing(const char* path, ArchiveTrace& trace) {
    ByValue([&] {
        CFile file(path, CFile::modeRead);
        DocumentHeader::Bytes first{};
        const bool tagged =
            file.Read(first.data(), first.size()) >= 2 && first[0] == 0xFF && first[1] == 0xFF;
        const bool document = DocumentHeader::Begins(first);
        file.Seek(document ? DocumentHeader::kSize : 0, CFile::begin);
        CArchive ar(&file, CArchive::load);
        if (document) ar.SetDialect(CArchive::Dialect::COMPLETE, DocumentHeader::VersionIn(first));
        ar.SetTrace(&trace);
        // Hosts store a drawing with its class or only what is in it.
        if (document || tagged) {
            const std::unique_ptr<CObject> drawing = ar.ReadNewObject(nullptr);
        } else {
            Zel2Main drawing;
            drawing.Serialize(ar);
        }
    });
}

std::unique_ptr<Zel2> DeepCopy(Zel2& object) {
    return ByValue([&] {
        CMemFile file;
        StoreComplete(file, object);
        file.SeekToBegin();
        CArchive ar(&file, CArchive::load);
        ar.SetDialect(CArchive::Dialect::COMPLETE);
        return ReadOwned<Zel2>(ar);
    });
}

}  // namespace zel
