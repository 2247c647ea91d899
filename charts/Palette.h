// What layers look like when nothing else is said. Entries count from 0 and repeat after the last.
#pragma once

#include <zel/ChartOptions.h>

namespace zel {

COLORREF PaletteColor(int entry);
SymbolKind PaletteShape(int entry);

}  // namespace zel
