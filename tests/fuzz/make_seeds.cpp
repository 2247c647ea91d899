// Writes small drawings as seeds for the fuzz target: random ones of every class, and every example on the
// first lines of its data.
//
//     zel_make_seeds FOLDER DATA_FOLDER
#include "RandomDrawing.h"
#include "Support.h"
#include "examples/gallery.h"
#include "tests/fuzz/LoaderFuzz.h"

#include <zel/platform/Archive.h>
#include <zel/platform/File.h>
#include <zel/zel.h>

namespace {

using zel::fuzz::Mode;
constexpr unsigned kDrawings = 40;
constexpr int kLines = 12;

// The folder of the examples' data, cut short.
void CutData(const std::string& from, const std::string& to) {
    std::filesystem::create_directories(to);
    for (const auto& entry : std::filesystem::directory_iterator(from)) {
        std::ifstream whole(entry.path());
        std::ofstream part(to + "/" + entry.path().filename().string());
        std::string line;
        for (int i = 0; i < kLines && std::getline(whole, line); ++i) part << line << "\n";
    }
}

void WriteSeed(const std::string& path, unsigned mode, const void* bytes, std::size_t size) {
    std::ofstream seed(path + "-" + std::to_string(mode), std::ios::binary);
    seed.put(static_cast<char>(mode));
    seed.write(static_cast<const char*>(bytes), static_cast<std::streamsize>(size));
}

void WriteSeeds(Zel2Main& drawing, const std::string& path,
                const std::vector<CArchive::Dialect>& dialects = {CArchive::Dialect::CLASSIC,
                                                                  CArchive::Dialect::COMPLETE}) {
    for (const auto dialect : dialects) {
        CMemFile file;
        CArchive ar(&file, CArchive::store);
        ar.SetDialect(dialect);
        drawing.Serialize(ar);
        ar.Close();
        const unsigned mode =
            dialect == CArchive::Dialect::COMPLETE ? static_cast<unsigned>(Mode::COMPLETE) : 0U;
        for (const unsigned more : {0U, 0U + Mode::DRAWN, 0U + Mode::TRACED})
            WriteSeed(path, mode | more, file.GetData(), file.GetLength());
    }
    const std::vector<std::uint8_t> document = zel::DocumentBytes(drawing);
    for (const unsigned more : {0U, 0U + Mode::MENDED})
        WriteSeed(path, Mode::DOCUMENT | more, document.data(), document.size());
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    const std::string folder = std::filesystem::absolute(argv[1]), data = std::filesystem::absolute(argv[2]);
    std::filesystem::create_directories(folder);
    for (unsigned seed = 0; seed < kDrawings; ++seed)
        WriteSeeds(*zel::test::RandomDrawing(seed).Make(), folder + "/random" + std::to_string(seed));
    for (unsigned seed = 0; seed < kDrawings; ++seed) {
        const auto drawing = zel::test::RandomDrawing(seed, zel::test::RandomDrawing::Charts::WITH).Make();
        WriteSeeds(*drawing, folder + "/chart" + std::to_string(seed), {CArchive::Dialect::COMPLETE});
    }
    // Drawings keep where their data came from: under names that are the same every time.
    const zel::test::TemporaryFolder own;
    std::filesystem::current_path(own / "");
    setenv("TMPDIR", ".", 1);
    CutData(data, "data");
    for (const Example& example : AllExamples()) {
        const auto drawing = example.make("data");
        IsChart(*drawing) ? WriteSeeds(*drawing, folder + "/" + example.name, {CArchive::Dialect::COMPLETE})
                          : WriteSeeds(*drawing, folder + "/" + example.name);
    }
    return 0;
}
