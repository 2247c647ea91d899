// Compression of what lies whole in memory.
#pragma once

#include <string>
#include <string_view>

namespace zel::qt {

// `bytes` in the format of zlib. Levels are those of libdeflate, from 1, the fastest, to 12.
std::string Deflated(std::string_view bytes, int level = 6);

}  // namespace zel::qt
