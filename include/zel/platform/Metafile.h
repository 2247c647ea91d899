// Windows metafiles: recording them, and the placeable header.
#pragma once

#include <zel/platform/GdiTypes.h>

#include <array>
#include <cstdint>
#include <vector>

// A context that records what is drawn on it, into a file or, when `fileName` is null, into memory. It
// answers no questions about the surface or text: give its CDC an attribute context. Coordinates are cut to
// 16 bits.
HDC CreateMetaFile(const char* fileName);
// Ends the recording and the context. The file is written now, whole or not at all; throws CFileException*.
// Null when `dc` is no recorder; it then stays as it is.
HMETAFILE CloseMetaFile(HDC dc);
// Releases the handle; a file stays.
BOOL DeleteMetaFile(HMETAFILE metafile);
// The bytes of the metafile, header included.
const std::vector<std::uint8_t>& GetMetaFileBits(HMETAFILE metafile);

namespace zel {

// From here on a recorder whose logical units are those of its device, of which an inch has so many, leaves
// out points of lines and marks that make no difference to what is seen. Nothing for other contexts.
void LeaveOutUnseen(HDC recorder, int unitsPerInch);

// The 22-byte header in front of a metafile that says where and how large it is (Microsoft MS-WMF,
// section 2.3.2.3): key, handle 0, box, units per inch, reserved, and a checksum of the ten words before it.
std::array<std::uint8_t, 22> PlaceableHeader(const CRect& box, WORD unitsPerInch);

}  // namespace zel
