// Files of other formats, one way of writing for all of them.
#pragma once

#include <zel/ZelExport.h>

#include <memory>

namespace zel {

// A file that a drawing, or its pages one after another, is drawn into. Nothing is written before Finish().
class ExportFile {
  public:
    virtual ~ExportFile() = default;
    virtual void Draw() = 0;
    virtual void NewPage() = 0;
    virtual void Finish() = 0;
};

// Begins the file `path` for a drawing that has a size, in the format of its ending. Throws as Export does.
std::unique_ptr<ExportFile> CreateExportFile(Zel2Main& drawing, const char* path,
                                             const ExportOptions& options);

}  // namespace zel
