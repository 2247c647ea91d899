// Loads whatever it is given as an archive in both dialects or as a document, draws what comes of it, and
// stores it again.
#include <zel/platform/Archive.h>
#include <zel/platform/File.h>
#include <zel/platform/MetricsDevice.h>
#include <zel/zel.h>

namespace {

void Draw(Zel2Main& root) {
    zel::MetricsDevice device;
    CDC dc(device);
    root.PrepareMappingFor(&dc, nullptr, 0, 0);
    root.Draw(&dc);
}

void Store(Zel2Main& root, CArchive::Dialect dialect) {
    CMemFile file;
    CArchive ar(&file, CArchive::store);
    ar.SetDialect(dialect);
    root.Serialize(ar);
    ar.Close();
}

void LoadAsDocument(const std::uint8_t* bytes, std::size_t size) {
    try {
        zel::LoadDocument(bytes, size, "fuzz");
    } catch (CException* e) {
        e->Delete();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    if (size < 1) return 0;
    if (bytes[0] & 4) {
        LoadAsDocument(bytes + 1, size - 1);
        return 0;
    }
    // The first byte chooses the dialect and whether the drawing is drawn, which is slow.
    const auto dialect = bytes[0] & 1 ? CArchive::Dialect::COMPLETE : CArchive::Dialect::CLASSIC;
    try {
        CMemFile file(bytes + 1, size - 1);
        CArchive ar(&file, CArchive::load);
        ar.SetDialect(dialect);
        Zel2Main root;
        root.Serialize(ar);
        if (bytes[0] & 2) Draw(root);
        Store(root, dialect);
    } catch (CException* e) {
        e->Delete();
    }
    return 0;
}
