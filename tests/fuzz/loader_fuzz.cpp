// Loads whatever it is given as an archive in both dialects or as a document, draws what comes of it, stores
// it, and checks that what was stored is read back and stored alike.
#include "tests/fuzz/LoaderFuzz.h"

#include <zel/platform/Archive.h>
#include <zel/platform/File.h>
#include <zel/platform/MetricsDevice.h>
#include <zel/zel.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>
#include <zlib.h>

namespace {

using zel::fuzz::Mode;
using Bytes = std::vector<std::uint8_t>;
constexpr std::size_t kHeader = 40;

void Draw(Zel2Main& root) {
    zel::MetricsDevice device;
    CDC dc(device);
    root.PrepareMappingFor(&dc, nullptr, 0, 0);
    root.Draw(&dc);
}

Bytes Stored(Zel2Main& root, CArchive::Dialect dialect) {
    CMemFile file;
    CArchive ar(&file, CArchive::store);
    ar.SetDialect(dialect);
    root.Serialize(ar);
    ar.Close();
    return {file.GetData(), file.GetData() + file.GetLength()};
}

class BlindTrace : public zel::ArchiveTrace {
  public:
    void Number(std::uint64_t, std::size_t, bool, const std::string&) override {}
    void Text(std::uint64_t, const std::string&) override {}
    void Block(std::uint64_t, const std::uint8_t*, std::size_t) override {}
    void BeginObject(std::uint64_t, const char*, std::uint32_t, bool) override {}
    void EndObject() override {}
    void Reference(std::uint64_t, std::uint32_t) override {}
};

std::unique_ptr<Zel2Main> Loaded(const Bytes& bytes, CArchive::Dialect dialect, zel::ArchiveTrace* trace) {
    CMemFile file(bytes.data(), bytes.size());
    CArchive ar(&file, CArchive::load);
    ar.SetDialect(dialect);
    if (trace) ar.SetTrace(trace);
    auto root = std::make_unique<Zel2Main>();
    root->Serialize(ar);
    return root;
}

void Archive(const Bytes& bytes, unsigned mode) {
    const auto dialect = mode & Mode::COMPLETE ? CArchive::Dialect::COMPLETE : CArchive::Dialect::CLASSIC;
    BlindTrace trace;
    const auto root = Loaded(bytes, dialect, mode & Mode::TRACED ? &trace : nullptr);
    if (mode & Mode::DRAWN) Draw(*root);
    const Bytes first = Stored(*root, dialect);
    const Bytes second = Stored(*Loaded(first, dialect, nullptr), dialect);
    if (first != second) {
        std::fputs("what was stored does not come back\n", stderr);
        std::abort();
    }
}

void Put(Bytes& bytes, std::size_t at, std::uint64_t value, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) bytes[at + i] = static_cast<std::uint8_t>(value >> 8 * i);
}

// No chance finds a checksum: lets what lies behind them be reached.
void MendChecksums(Bytes& bytes) {
    if (bytes.size() < kHeader) return;
    Put(bytes, 16, bytes.size() - kHeader, 8);
    Put(bytes, 24, crc32_z(0, bytes.data() + kHeader, bytes.size() - kHeader), 4);
    Put(bytes, 36, crc32_z(0, bytes.data(), 36), 4);
}

void Document(Bytes bytes, unsigned mode) {
    if (mode & Mode::MENDED) MendChecksums(bytes);
    const auto drawing = zel::LoadDocument(bytes.data(), bytes.size(), "fuzz");
    if (mode & Mode::DRAWN) Draw(*drawing);
    zel::DocumentBytes(*drawing);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    if (size < 1) return 0;
    const Bytes content(bytes + 1, bytes + size);
    try {
        if (bytes[0] & Mode::DOCUMENT)
            Document(content, bytes[0]);
        else
            Archive(content, bytes[0]);
    } catch (CException* e) {
        e->Delete();
    } catch (const zel::Error&) {
        return 0;
    }
    return 0;
}
