// The distribution of objects over pages.
#pragma once

#include <zel/Zel2.h>

#include <memory>
#include <vector>

namespace zel {

using PageContent = std::vector<std::unique_ptr<Zel2>>;

// Puts `objects`, in their order, on pages of the heights that `room` tells. An object that does not fit is
// broken where it can be, else it begins a new page; one that is higher than a page and cannot be broken
// stands alone. The status bits KEEP_WITH_NEXT and BREAK_BEFORE are honoured, the former as long as what
// belongs together fits on one page. The first page of the answer is empty when it was not to begin with and
// nothing more fits on it. Every object is in the answer, each page but the first holds one at least, and the
// time taken is linear in the objects and their parts.
std::vector<PageContent> FlowOntoPages(PageContent objects, const Zel2::PageRoom& room);

// The height that the page needs for an object that begins a run of objects to be kept together, and the
// beginning of what follows them. `end` becomes the index after the run.
std::int64_t HeightKeptTogether(const PageContent& objects, std::size_t begin, std::size_t& end);

}  // namespace zel
