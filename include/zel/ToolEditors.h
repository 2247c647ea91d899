// How tool tables are edited by people.
#pragma once

#include <zel/platform/String.h>

#include <functional>

class DrawColorTable;
class DrawFont;
class DrawFontTable;
class DrawPenTable;

namespace zel {

// What the Edit operations of the tables and of fonts run; an empty one edits nothing and answers 0. Each
// answers 1 when the user accepted the changes, which are made in what it is given, else 0. The tables close
// themselves around it where that is needed.
struct ToolEditors {
    std::function<int(DrawColorTable&)> colors;
    std::function<int(DrawPenTable&)> pens;
    std::function<int(DrawFontTable&)> fonts;
    std::function<int(DrawFont&)> font;
};

// The editors of the program; the library's own dialogs come with zel::InstallToolDialogs.
ToolEditors& TheToolEditors();

}  // namespace zel
