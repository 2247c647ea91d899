#include <zel/ToolEditors.h>

zel::ToolEditors& zel::TheToolEditors() {
    static ToolEditors editors;
    return editors;
}
