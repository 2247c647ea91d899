#include "backends/qt/Deflate.h"

#include <libdeflate.h>

#include <memory>
#include <new>

namespace zel::qt {

std::string Deflated(std::string_view bytes, int level) {
    struct Free {
        void operator()(libdeflate_compressor* compressor) const { libdeflate_free_compressor(compressor); }
    };
    const std::unique_ptr<libdeflate_compressor, Free> compressor(libdeflate_alloc_compressor(level));
    if (!compressor) throw std::bad_alloc();
    std::string packed(libdeflate_zlib_compress_bound(compressor.get(), bytes.size()), '\0');
    packed.resize(libdeflate_zlib_compress(compressor.get(), bytes.data(), bytes.size(), packed.data(),
                                           packed.size()));
    return packed;
}

}  // namespace zel::qt
