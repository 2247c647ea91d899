// Reports as files of other programs.
#pragma once

#include <zel/Zel2Report.h>
#include <zel/ZelExport.h>

namespace zel {

// Writes all pages of `report`, which stands in `drawing`: into one PDF file, or one file a page for other
// formats (see ExportPages). A report that has no pages yet is broken into them first. The selected page is
// as before afterwards. Returns false when `progress` has asked to stop; then no file of the export stays.
// Throws as Export does.
bool ExportReport(Zel2Main& drawing, Zel2Report& report, const char* path, const ExportOptions& options = {},
                  const ExportProgress& progress = {});

}  // namespace zel
