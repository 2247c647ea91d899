#include "backends/qt/Deflate.h"

#include <libdeflate.h>
#include <memory>
#include <new>

namespace zel::qt {

Deflated::Deflated(std::string_view bytes, int level) {
    struct Free {
        void operator()(libdeflate_compressor* compressor) const { libdeflate_free_compressor(compressor); }
    };
    const std::unique_ptr<libdeflate_compressor, Free> compressor(libdeflate_alloc_compressor(level));
    if (!compressor) throw std::bad_alloc();
    const std::size_t most = libdeflate_zlib_compress_bound(compressor.get(), bytes.size());
    // What is not written to costs no memory.
    packed_ = std::make_unique_for_overwrite<char[]>(most);
    size_ = libdeflate_zlib_compress(compressor.get(), bytes.data(), bytes.size(), packed_.get(), most);
}

}  // namespace zel::qt
