#include "apps/zelview/History.h"

namespace zel::view {

void History::Reset(Bytes state, bool saved) {
    steps_.clear();
    at_ = 0;
    bytes_ = state.size();
    steps_.push_back({std::move(state), {}, ++counter_});
    saved_ = saved ? counter_ : 0;
}

void History::Push(Bytes state, std::string edit) {
    while (CanRedo()) {
        bytes_ -= steps_.back().state.size();
        steps_.pop_back();
    }
    bytes_ += state.size();
    steps_.push_back({std::move(state), std::move(edit), ++counter_});
    at_ = steps_.size() - 1;
    DropOld();
}

void History::DropOld() {
    while (at_ > 0 && (steps_.size() > kMostSteps + 1 || bytes_ > kMostBytes)) {
        bytes_ -= steps_.front().state.size();
        steps_.pop_front();
        --at_;
    }
}

const Bytes& History::Undo() {
    if (CanUndo()) --at_;
    return Present();
}

const Bytes& History::Redo() {
    if (CanRedo()) ++at_;
    return Present();
}

}  // namespace zel::view
