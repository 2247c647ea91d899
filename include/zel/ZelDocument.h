// Drawings as files that lose nothing.
#pragma once

#include <zel/Error.h>
#include <zel/Zel2Main.h>
#include <zel/platform/Archive.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace zel {

inline constexpr int kDocumentVersion = 2;

// Writes `drawing` as a document (.zel): a header with magic number, format version, rule set, length and
// checksums, then the drawing in the archive's complete dialect. The file is written beside `path`, flushed
// to disk and renamed over it: an existing file stays whole until then. Throws FileError, or FormatError for
// an object that cannot be stored.
void SaveDocument(Zel2Main& drawing, const char* path);

// The bytes that SaveDocument would write: for undo, clipboards and programs that keep documents elsewhere.
std::vector<std::uint8_t> DocumentBytes(Zel2Main& drawing);

// Reads a document whole or not at all. Throws FileError when the file cannot be read, FormatError when it is
// no document, of a newer version, cut short or damaged.
std::unique_ptr<Zel2Main> LoadDocument(const char* path);
// The same from bytes in memory (borrowed for the call); `name` stands for the source in messages.
std::unique_ptr<Zel2Main> LoadDocument(const void* bytes, std::size_t size, const char* name);

// What the header of a document says, once it and both checksums have been found right. No object is read.
// Throws as LoadDocument does.
struct DocumentFacts {
    int version = 0;
    ZelRules rules = ZelRules::CLASSIC;
    std::uint64_t contentLength = 0;  // bytes
};
DocumentFacts CheckDocument(const char* path);

// Reads the content of a document, or a classic archive of a drawing, and tells `trace` of everything that is
// read, up to where it fails: for examining broken files. A document's checksums are not looked at. Offsets
// count from the beginning of the content: a document's header is 40 bytes. Throws as LoadDocument does.
void TraceDrawing(const char* path, ArchiveTrace& trace);

// An independent copy of `object` and everything below it, made through the complete dialect. The copy has no
// parent. Throws FormatError when something of it cannot be stored.
std::unique_ptr<Zel2> DeepCopy(Zel2& object);

}  // namespace zel
