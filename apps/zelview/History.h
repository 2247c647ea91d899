// Undo and redo.
#pragma once

#include "apps/zelview/Blocks.h"

#include <deque>
#include <string>
#include <utility>

namespace zel::view {

// The states that a drawing has gone through, as documents. Each takes the memory of what is new in it: the
// points of a long series are there once. Old ones are dropped when there are too many or they take too much
// memory; the present one always stays.
class History {
  public:
    static constexpr std::size_t kMostSteps = 200;
    static constexpr std::size_t kMostBytes = std::size_t{256} << 20;

    // Begins anew with one state, which counts as saved or not.
    void Reset(Bytes state, bool saved);
    // A new state, reached by `edit`; what was undone is gone.
    void Push(Bytes state, std::string edit);

    bool CanUndo() const { return at_ > 0; }
    bool CanRedo() const { return at_ + 1 < steps_.size(); }
    // The edit that would be undone or redone; empty when there is none.
    std::string UndoName() const { return CanUndo() ? steps_[at_].edit : std::string(); }
    std::string RedoName() const { return CanRedo() ? steps_[at_ + 1].edit : std::string(); }
    // One step back or forth, where there is one; the state that is present then.
    const Bytes& Undo() { return GoTo(CanUndo() ? at_ - 1 : at_); }
    const Bytes& Redo() { return GoTo(CanRedo() ? at_ + 1 : at_); }
    const Bytes& Present() const { return present_; }

    void MarkSaved() { saved_ = steps_[at_].number; }
    bool IsModified() const { return !steps_.empty() && steps_[at_].number != saved_; }
    // Tells states apart: what is written once need not be written again.
    std::uint64_t PresentNumber() const { return steps_.empty() ? 0 : steps_[at_].number; }

  private:
    struct Step {
        Blocks state;
        std::string edit;  // that led here
        std::uint64_t number;
    };
    void Append(Bytes state, std::string edit, const Blocks& like);
    void DropOld();
    const Bytes& GoTo(std::size_t step);

    std::deque<Step> steps_;
    Bytes present_;  // whole, as it is shown and saved
    std::size_t at_ = 0;
    std::size_t bytes_ = 0;  // of all steps, each shared block once
    std::uint64_t counter_ = 0;
    std::uint64_t saved_ = 0;
};

}  // namespace zel::view
