// The pictures of the view's commands.
#pragma once

#include <zel/platform/Controls.h>

// What a command shows and is called; false for one that is not the library's.
bool ToolOf(UINT id, CToolBar::Image& image, const char*& text);
