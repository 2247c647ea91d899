// The cursor of the zoom modes.
#pragma once

// Registers a magnifying glass as the cursor ZelViewer::kZoomCursor.
void RegisterZoomCursor();
