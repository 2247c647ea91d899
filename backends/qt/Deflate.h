// Compression of what lies whole in memory.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

namespace zel::qt {

// Bytes in the format of zlib.
class Deflated {
  public:
    // Levels are those of libdeflate, from 1, the fastest, to 12.
    explicit Deflated(std::string_view bytes, int level = 6);
    std::string_view View() const { return {packed_.get(), size_}; }

  private:
    std::unique_ptr<char[]> packed_;
    std::size_t size_;
};

}  // namespace zel::qt
