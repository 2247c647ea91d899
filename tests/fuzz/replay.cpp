// Gives the fuzz target all files of some folders, once: what was found stays found, in time too.
#include "tests/fuzz/LoaderFuzz.h"

#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

constexpr int kMostSeconds = 3;  // of the processor, for files of some kilobytes

int main(int argc, char** argv) {
    int count = 0;
    for (int i = 1; i < argc; ++i) {
        for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
            std::ifstream file(entry.path(), std::ios::binary);
            const std::string bytes{std::istreambuf_iterator<char>(file), {}};
            std::fprintf(stderr, "%s\n", entry.path().c_str());
            const std::clock_t begin = std::clock();
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
            if (std::clock() - begin > kMostSeconds * CLOCKS_PER_SEC) {
                std::fprintf(stderr, "took more than %d seconds\n", kMostSeconds);
                return 1;
            }
            ++count;
        }
    }
    std::printf("%d inputs\n", count);
    return count > 0 ? 0 : 1;
}
