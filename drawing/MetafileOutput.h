// A drawing as a Windows metafile, with failures as exceptions.
#pragma once

#include <zel/Zel2Main.h>

namespace zel {

// What Zel2Main::CreateMF does; `unitsPerInch`, when given, is set to the resolution of a recording with
// exact rules.
HMETAFILE RecordMetafile(Zel2Main& root, const char* fileName, int* unitsPerInch);

// With exact rules: a metafile with the published placeable header, written whole or not at all. Throws
// CFileException*.
void WritePlaceableMetafile(Zel2Main& root, const char* fileName);

}  // namespace zel
