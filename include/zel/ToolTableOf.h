// A tool table of one kind of tool.
#pragma once

#include <zel/DrawTool.h>

namespace zel {

// Adds typed look-ups to the tool table: null when there is no such tool, or when a loaded table holds a tool
// of another kind at that place.
template <class Tool>
class ToolTableOf : public DrawToolTable {
  public:
    using DrawToolTable::DrawToolTable;
    ToolTableOf() = default;

    Tool* operator()(int i) const { return dynamic_cast<Tool*>(Get(i)); }
    Tool* operator()(const char* name) const { return dynamic_cast<Tool*>(Get(name)); }
};

}  // namespace zel
