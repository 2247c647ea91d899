#include <zel/ZelReportExport.h>

namespace zel {

bool ExportReport(Zel2Main& drawing, Zel2Report& report, const char* path, const ExportOptions& options,
                  const ExportProgress& progress) {
    if (report.PageCount() == 0) report.MakePages();
    const int selected = report.SelectedPage();
    const auto select = [&](int page) { report.SelectPage(page); };
    try {
        const bool done = ExportPages(drawing, report.PageCount(), select, path, options, progress);
        report.SelectPage(selected);
        return done;
    } catch (...) {
        report.SelectPage(selected);
        throw;
    }
}

}  // namespace zel
