#include "layout/PageFlow.h"

namespace zel {
namespace {

class Flow {
  public:
    explicit Flow(const Zel2::PageRoom& room)
        : rest_(room.rest), room_(room.first), firstIsEmpty_(room.empty), pages_(1) {}

    void Place(std::unique_ptr<Zel2> object) {
        for (;;) {
            PageContent pieces = object->SplitPages({Saturate(room_), rest_, IsFresh()});
            if (!pieces.empty()) {
                Put(std::move(object));
                for (auto& piece : pieces) {
                    BeginPage();
                    Put(std::move(piece));
                }
                return;
            }
            if (object->Size().cy <= room_ || IsFresh()) {
                Put(std::move(object));
                return;
            }
            BeginPage();
        }
    }

    void BreakPage() {
        if (!pages_.back().empty()) BeginPage();
    }
    // A new page, when a height does not fit here but on a page of its own.
    void MakeRoom(std::int64_t height) {
        if (height > room_ && height <= rest_ && !IsFresh()) BeginPage();
    }
    std::vector<PageContent> Pages() { return std::move(pages_); }

  private:
    bool IsFresh() const { return pages_.back().empty() && (pages_.size() > 1 || firstIsEmpty_); }
    void BeginPage() {
        pages_.emplace_back();
        room_ = rest_;
    }
    void Put(std::unique_ptr<Zel2> object) {
        room_ -= object->Size().cy;
        pages_.back().push_back(std::move(object));
    }

    int rest_;
    std::int64_t room_;
    bool firstIsEmpty_;
    std::vector<PageContent> pages_;
};

}  // namespace

std::int64_t HeightKeptTogether(const PageContent& objects, std::size_t begin, std::size_t& end) {
    std::int64_t height = 0;
    end = begin;
    for (; end < objects.size() && objects[end]->GetStatus(Zel2::KEEP_WITH_NEXT); ++end)
        height += objects[end]->Size().cy;
    if (end < objects.size()) height += objects[end++]->BeginningHeight();
    return height;
}

std::vector<PageContent> FlowOntoPages(PageContent objects, const Zel2::PageRoom& room) {
    Flow flow(room);
    std::size_t keptUntil = 0;
    for (std::size_t i = 0; i < objects.size(); ++i) {
        if (objects[i]->GetStatus(Zel2::BREAK_BEFORE)) flow.BreakPage();
        if (i >= keptUntil) flow.MakeRoom(HeightKeptTogether(objects, i, keptUntil));
        flow.Place(std::move(objects[i]));
    }
    return flow.Pages();
}

}  // namespace zel
