#include "apps/zelview/History.h"

namespace zel::view {

void History::Reset(Bytes state, bool saved) {
    steps_.clear();
    at_ = 0;
    bytes_ = 0;
    Append(std::move(state), {}, {});
    saved_ = saved ? counter_ : 0;
}

void History::Push(Bytes state, std::string edit) {
    while (CanRedo()) {
        bytes_ -= steps_.back().state.Unshared();
        steps_.pop_back();
    }
    Append(std::move(state), std::move(edit), steps_.back().state);
    at_ = steps_.size() - 1;
    DropOld();
}

void History::Append(Bytes state, std::string edit, const Blocks& like) {
    steps_.push_back({Blocks(state, like), std::move(edit), ++counter_});
    bytes_ += steps_.back().state.Unshared();
    present_ = std::move(state);
    present_.shrink_to_fit();
}

void History::DropOld() {
    while (at_ > 0 && (steps_.size() > kMostSteps + 1 || bytes_ > kMostBytes)) {
        bytes_ -= steps_.front().state.Unshared();
        steps_.pop_front();
        --at_;
    }
}

const Bytes& History::GoTo(std::size_t step) {
    if (step != at_) present_ = steps_[step].state.Join();
    at_ = step;
    return present_;
}

}  // namespace zel::view
