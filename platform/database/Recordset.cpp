#include "platform/database/Recordset.h"

#include <algorithm>

namespace zel {

Recordset::Recordset(DatabaseConnection& connection, std::string sql)
    : connection_(connection), sql_(std::move(sql)) {
    Restart();
}

void Recordset::Restart() {
    DropHeld();
    cursor_.reset();
    added_ = false;
    cursor_ = connection_.Query(sql_);
    columns_ = cursor_->Columns();
    ownKeys_.clear();
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        if (columns_[i].ownKeyValue) ownKeys_.push_back(static_cast<int>(i));
    }
    stride_ = columns_.size() + ownKeys_.size();
    position_ = -1;
    place_ = Place::ON;
    empty_ = false;
    Next();
    empty_ = place_ == Place::BEHIND;
}

void Recordset::DropHeld() {
    held_ = false;
    heldFrom_ = 0;
    cells_.clear();
    deleted_.clear();
}

void Recordset::Next() {
    if (held_) {
        Settle(place_ == Place::BEFORE ? heldFrom_ : position_ + 1, 1);
    } else if (cursor_->Next()) {
        visited_ = std::max(visited_, ++position_ + 1);
    } else {
        ++position_;
        End();
    }
}

void Recordset::End() {
    place_ = Place::BEHIND;
    cursor_.reset();  // lets go of the database's locks
}

void Recordset::ReadNumbers(int xColumn, int yColumn, std::vector<double>& xs, std::vector<double>& ys) {
    if (held_ || !cursor_ || !IsOnRow()) return;
    bool ended = false;
    position_ += static_cast<long>(cursor_->ReadNumbers(xColumn, yColumn, xs, ys, ended));
    visited_ = std::max(visited_, position_ + (ended ? 0 : 1));
    if (ended) End();
}

void Recordset::Settle(long position, int direction) {
    const long end = HeldEnd();
    while (position >= heldFrom_ && position < end &&
           deleted_[static_cast<std::size_t>(position - heldFrom_)])
        position += direction;
    position_ = position;
    place_ = position < heldFrom_ ? Place::BEFORE : position < end ? Place::ON : Place::BEHIND;
    if (place_ == Place::ON) visited_ = std::max(visited_, position_ + 1);
}

void Recordset::First() {
    if (!added_ && held_ && heldFrom_ == 0) {
        Settle(0, 1);
    } else if (added_ || held_ || position_ != 0 || place_ != Place::ON) {
        Restart();
    }
}

void Recordset::Last() {
    if (added_ || (!held_ && !cursor_)) Restart();
    Hold();
    if (!empty_) Settle(HeldEnd() - 1, -1);
}

void Recordset::Prev() {
    if (place_ == Place::BEHIND) {
        Last();
        return;
    }
    Hold();
    const long wanted = position_ - 1;
    Settle(wanted, -1);
    // What lies before the held rows was not kept.
    if (place_ == Place::BEFORE && heldFrom_ > 0) GoTo(wanted);
}

void Recordset::GoTo(long position) {
    Restart();
    Hold();
    if (!empty_) Settle(std::min(position, HeldEnd() - 1), -1);
}

void Recordset::TakeRow() {
    const std::size_t begin = cells_.size();
    cells_.resize(begin + stride_);
    for (std::size_t i = 0; i < columns_.size(); ++i) cursor_->Read(static_cast<int>(i), cells_[begin + i]);
    for (std::size_t i = 0; i < ownKeys_.size(); ++i)
        cursor_->ReadKey(ownKeys_[i], cells_[begin + columns_.size() + i]);
    deleted_.push_back(false);
}

void Recordset::Hold() {
    if (held_ || !cursor_) return;
    try {
        do {
            TakeRow();
        } while (cursor_->Next());
    } catch (...) {
        DropHeld();
        throw;
    }
    held_ = true;
    heldFrom_ = position_;
    cursor_.reset();
}

void Recordset::ReadKey(int column, COleVariant& value) {
    if (!held_) {
        cursor_->ReadKey(column, value);
        return;
    }
    const auto own = std::find(ownKeys_.begin(), ownKeys_.end(), column);
    const std::size_t slot = own == ownKeys_.end()
                                 ? static_cast<std::size_t>(column)
                                 : columns_.size() + static_cast<std::size_t>(own - ownKeys_.begin());
    value = cells_[Index() * stride_ + slot];
}

void Recordset::Replace(const std::vector<COleVariant>& values) {
    const std::size_t begin = Index() * stride_;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        const bool changed = !(cells_[begin + i] == values[i]);
        cells_[begin + i] = values[i];
        const auto own = std::find(ownKeys_.begin(), ownKeys_.end(), static_cast<int>(i));
        // A value that was written is found again by itself.
        if (changed && own != ownKeys_.end())
            cells_[begin + columns_.size() + static_cast<std::size_t>(own - ownKeys_.begin())] = values[i];
    }
}

void Recordset::MarkDeleted() {
    deleted_[Index()] = true;
}

}  // namespace zel
