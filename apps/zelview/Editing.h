// What is done to the selected objects of a drawing.
#pragma once

#include "apps/zelview/History.h"

#include <zel/zel.h>

#include <string>

namespace zel::view {

// The drawing as a document in which nothing is selected. What stands in an open editor counts.
Bytes StateOf(Zel2Main& drawing, Zel2Selection& selection);

// Ends typing, so that what was typed is in the objects; they stay selected.
void EndTyping(Zel2Selection& selection);
// Opens the editor of the object that has the focus, or ends typing.
void EditText(Zel2Selection& selection);

// Moves (or, with `size`, enlarges) every selected object by world units. False when nothing is selected.
bool Nudge(Zel2Selection& selection, const CSize& by, bool size);

// Deletes the selected objects; answers how many.
int DeleteSelected(Zel2Selection& selection);

// The selected objects with the tools of their drawing, as a document. Empty when nothing is selected.
Bytes CopySelected(Zel2Main& drawing, Zel2Selection& selection);

// Puts the objects of such a document into the drawing, a little beside their old places, and answers how
// many. With `sameDrawing` they use the drawing's own tools; otherwise they come in a registry with theirs.
// Series go into the graph that is selected, or into the first one. They are selected afterwards. Throws as
// LoadDocument does.
int Paste(Zel2Main& drawing, Zel2Selection& selection, const Bytes& copied, bool sameDrawing);

// A new text of the drawing's own, at a place in world units.
void PasteText(Zel2Main& drawing, Zel2Selection& selection, const std::string& text, const CPoint& at);

// Selects every object that stands directly in the drawing.
void SelectAll(Zel2Main& drawing, Zel2Selection& selection);
// Selects the object after (`by` 1) or before (-1) the selected one.
void SelectNext(Zel2Main& drawing, Zel2Selection& selection, int by);

}  // namespace zel::view
