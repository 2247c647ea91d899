// Long byte sequences that share what they have in common.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace zel::view {

using Bytes = std::vector<std::uint8_t>;

// A byte sequence in blocks of some kilobytes. It is cut where its bytes say so, not at fixed places: when
// something is put in or taken out, the blocks behind are the same as before and need no memory of their own.
class Blocks {
  public:
    Blocks() = default;
    // Shares with `like` the blocks that both have.
    Blocks(const Bytes& bytes, const Blocks& like);

    // The whole sequence.
    Bytes Join() const;
    // The memory, in bytes, that would be free without this sequence.
    std::size_t Unshared() const;

  private:
    struct Block {
        Bytes bytes;
        std::size_t hash;
    };
    std::vector<std::shared_ptr<const Block>> blocks_;
};

}  // namespace zel::view
