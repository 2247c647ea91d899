#include "apps/zelview/Blocks.h"

#include <algorithm>
#include <array>
#include <unordered_map>

namespace zel::view {
namespace {

constexpr std::size_t kShortest = std::size_t{1} << 12;
constexpr std::size_t kLongest = std::size_t{1} << 16;
// So many bits of the sum are zero at an end: a block has 16 KB beyond the shortest on average. The highest
// ones, which depend on all of the last 64 bytes.
constexpr std::uint64_t kEndBits = ~std::uint64_t{0} << (64 - 14);

// A random number for each byte (a fixed sequence of well mixed ones).
constexpr std::array<std::uint64_t, 256> kWeights = [] {
    std::array<std::uint64_t, 256> weights{};
    std::uint64_t state = 0;
    for (std::uint64_t& weight : weights) {
        std::uint64_t z = state += 0x9E3779B97F4A7C15;
        z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9;
        z = (z ^ z >> 27) * 0x94D049BB133111EB;
        weight = z ^ z >> 31;
    }
    return weights;
}();

// The length of the block that begins `rest`. The shift lets a byte leave the sum after 64 more, so that an
// end depends on its neighbourhood alone.
std::size_t LengthOfFirst(std::string_view rest) {
    if (rest.size() <= kShortest) return rest.size();
    const std::size_t limit = std::min(rest.size(), kLongest);
    std::uint64_t sum = 0;
    for (std::size_t i = kShortest - 64; i < limit; ++i) {
        sum = (sum << 1) + kWeights[static_cast<std::uint8_t>(rest[i])];
        if (i >= kShortest && (sum & kEndBits) == 0) return i + 1;
    }
    return limit;
}

std::string_view ViewOf(const Bytes& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

}  // namespace

Blocks::Blocks(const Bytes& bytes, const Blocks& like) {
    std::unordered_multimap<std::size_t, std::shared_ptr<const Block>> known;
    for (const auto& block : like.blocks_) known.emplace(block->hash, block);
    std::string_view rest = ViewOf(bytes);
    while (!rest.empty()) {
        const std::string_view piece = rest.substr(0, LengthOfFirst(rest));
        const std::size_t hash = std::hash<std::string_view>()(piece);
        const auto [first, last] = known.equal_range(hash);
        const auto same = std::find_if(
            first, last, [&](const auto& entry) { return ViewOf(entry.second->bytes) == piece; });
        blocks_.push_back(
            same != last ? same->second
                         : std::make_shared<const Block>(Block{Bytes(piece.begin(), piece.end()), hash}));
        if (same == last) known.emplace(hash, blocks_.back());
        rest.remove_prefix(piece.size());
    }
}

Bytes Blocks::Join() const {
    std::size_t size = 0;
    for (const auto& block : blocks_) size += block->bytes.size();
    Bytes bytes;
    bytes.reserve(size);
    for (const auto& block : blocks_) bytes.insert(bytes.end(), block->bytes.begin(), block->bytes.end());
    return bytes;
}

std::size_t Blocks::Unshared() const {
    // A block that stands here several times is still ours alone.
    std::unordered_map<const Block*, long> here;
    for (const auto& block : blocks_) ++here[block.get()];
    std::size_t size = 0;
    for (const auto& block : blocks_) {
        long& times = here[block.get()];
        if (times == block.use_count()) size += block->bytes.size();
        times = 0;  // counted
    }
    return size;
}

}  // namespace zel::view
