// Writes small drawings of every class as seeds for the fuzz target.
#include "RandomDrawing.h"

#include <zel/platform/Archive.h>
#include <zel/platform/File.h>
#include <zel/zel.h>

#include <fstream>
#include <iterator>
#include <string>

namespace {

constexpr unsigned kDrawings = 25;

void WriteSeed(Zel2Main& root, const std::string& path, int first) {
    CMemFile file;
    CArchive ar(&file, CArchive::store);
    ar.SetDialect(first & 1 ? CArchive::Dialect::COMPLETE : CArchive::Dialect::CLASSIC);
    root.Serialize(ar);
    ar.Close();
    std::ofstream seed(path, std::ios::binary);
    seed.put(static_cast<char>(first));
    seed.write(reinterpret_cast<const char*>(file.GetData()), static_cast<std::streamsize>(file.GetLength()));
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    const std::string folder(argv[1]);
    for (unsigned seed = 0; seed < kDrawings; ++seed) {
        const auto drawing = zel::test::RandomDrawing(seed).Make();
        for (int first = 0; first < 4; ++first)
            WriteSeed(*drawing, folder + "/seed" + std::to_string(seed) + "-" + std::to_string(first), first);
        // A whole document, header and checksums included.
        const std::string document = folder + "/document" + std::to_string(seed);
        zel::SaveDocument(*drawing, document.c_str());
        std::ifstream file(document, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(file), {}};
        std::ofstream(document, std::ios::binary) << static_cast<char>(4) << bytes;
    }
    return 0;
}
