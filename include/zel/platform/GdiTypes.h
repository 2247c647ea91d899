// Constants, records and handles of the graphics layer, under their well-known names and values.
#pragma once

#include <zel/platform/Geometry.h>
#include <zel/platform/WinTypes.h>

// Handles of pens, brushes, fonts and regions are opaque table keys. They are never reused for another
// object, so a stale handle names nothing. Contexts and metafiles are owned by whoever made them, and gone
// once ended.
using HGDIOBJ = struct ZelGdiObject*;
struct ZelPenHandle;
struct ZelBrushHandle;
struct ZelFontHandle;
struct ZelRegionHandle;
struct ZelContextHandle;
struct ZelMetafileHandle;
using HPEN = ZelPenHandle*;
using HBRUSH = ZelBrushHandle*;
using HFONT = ZelFontHandle*;
using HRGN = ZelRegionHandle*;
using HDC = ZelContextHandle*;
using HMETAFILE = ZelMetafileHandle*;

// Pen styles
inline constexpr int PS_SOLID = 0;
inline constexpr int PS_DASH = 1;
inline constexpr int PS_DOT = 2;
inline constexpr int PS_DASHDOT = 3;
inline constexpr int PS_DASHDOTDOT = 4;
inline constexpr int PS_NULL = 5;
inline constexpr int PS_INSIDEFRAME = 6;

// Brush styles and hatches
inline constexpr UINT BS_SOLID = 0;
inline constexpr UINT BS_NULL = 1;
inline constexpr UINT BS_HATCHED = 2;
inline constexpr int HS_HORIZONTAL = 0;
inline constexpr int HS_VERTICAL = 1;
inline constexpr int HS_FDIAGONAL = 2;
inline constexpr int HS_BDIAGONAL = 3;
inline constexpr int HS_CROSS = 4;
inline constexpr int HS_DIAGCROSS = 5;

// Stock objects
inline constexpr int WHITE_BRUSH = 0;
inline constexpr int LTGRAY_BRUSH = 1;
inline constexpr int GRAY_BRUSH = 2;
inline constexpr int DKGRAY_BRUSH = 3;
inline constexpr int BLACK_BRUSH = 4;
inline constexpr int NULL_BRUSH = 5;
inline constexpr int WHITE_PEN = 6;
inline constexpr int BLACK_PEN = 7;
inline constexpr int NULL_PEN = 8;
inline constexpr int SYSTEM_FONT = 13;

// Raster operations of pens (R2_*) and of whole rectangles
inline constexpr int R2_BLACK = 1;
inline constexpr int R2_NOTMERGEPEN = 2;
inline constexpr int R2_MASKNOTPEN = 3;
inline constexpr int R2_NOTCOPYPEN = 4;
inline constexpr int R2_MASKPENNOT = 5;
inline constexpr int R2_NOT = 6;
inline constexpr int R2_XORPEN = 7;
inline constexpr int R2_NOTMASKPEN = 8;
inline constexpr int R2_MASKPEN = 9;
inline constexpr int R2_NOTXORPEN = 10;
inline constexpr int R2_NOP = 11;
inline constexpr int R2_MERGENOTPEN = 12;
inline constexpr int R2_COPYPEN = 13;
inline constexpr int R2_MERGEPENNOT = 14;
inline constexpr int R2_MERGEPEN = 15;
inline constexpr int R2_WHITE = 16;
inline constexpr DWORD BLACKNESS = 0x00000042;
inline constexpr DWORD DSTINVERT = 0x00550009;
inline constexpr DWORD PATINVERT = 0x005A0049;
inline constexpr DWORD PATCOPY = 0x00F00021;
inline constexpr DWORD WHITENESS = 0x00FF0062;

// Background and polygon fill modes, arc directions
inline constexpr int TRANSPARENT = 1;
inline constexpr int OPAQUE = 2;
inline constexpr int ALTERNATE = 1;
inline constexpr int WINDING = 2;
inline constexpr int AD_COUNTERCLOCKWISE = 1;
inline constexpr int AD_CLOCKWISE = 2;

// Mapping modes
inline constexpr int MM_TEXT = 1;
inline constexpr int MM_LOMETRIC = 2;
inline constexpr int MM_HIMETRIC = 3;
inline constexpr int MM_LOENGLISH = 4;
inline constexpr int MM_HIENGLISH = 5;
inline constexpr int MM_TWIPS = 6;
inline constexpr int MM_ISOTROPIC = 7;
inline constexpr int MM_ANISOTROPIC = 8;

// Text alignment of TextOut
inline constexpr UINT TA_NOUPDATECP = 0;
inline constexpr UINT TA_UPDATECP = 1;
inline constexpr UINT TA_LEFT = 0;
inline constexpr UINT TA_RIGHT = 2;
inline constexpr UINT TA_CENTER = 6;
inline constexpr UINT TA_TOP = 0;
inline constexpr UINT TA_BOTTOM = 8;
inline constexpr UINT TA_BASELINE = 24;

// Flags of ExtTextOut
inline constexpr UINT ETO_OPAQUE = 2;
inline constexpr UINT ETO_CLIPPED = 4;

// Flags of DrawText
inline constexpr UINT DT_TOP = 0x0;
inline constexpr UINT DT_LEFT = 0x0;
inline constexpr UINT DT_CENTER = 0x1;
inline constexpr UINT DT_RIGHT = 0x2;
inline constexpr UINT DT_VCENTER = 0x4;
inline constexpr UINT DT_BOTTOM = 0x8;
inline constexpr UINT DT_WORDBREAK = 0x10;
inline constexpr UINT DT_SINGLELINE = 0x20;
inline constexpr UINT DT_EXPANDTABS = 0x40;
inline constexpr UINT DT_NOCLIP = 0x100;
inline constexpr UINT DT_EXTERNALLEADING = 0x200;
inline constexpr UINT DT_CALCRECT = 0x400;
inline constexpr UINT DT_NOPREFIX = 0x800;

// Font weights
inline constexpr int FW_DONTCARE = 0;
inline constexpr int FW_NORMAL = 400;
inline constexpr int FW_BOLD = 700;

// Regions
inline constexpr int RGN_AND = 1;
inline constexpr int RGN_OR = 2;
inline constexpr int RGN_XOR = 3;
inline constexpr int RGN_DIFF = 4;
inline constexpr int RGN_COPY = 5;
inline constexpr int NULLREGION = 1;
inline constexpr int SIMPLEREGION = 2;
inline constexpr int COMPLEXREGION = 3;
inline constexpr int RGN_ERROR = 0;

// Indexes of GetDeviceCaps
inline constexpr int TECHNOLOGY = 2;
inline constexpr int HORZSIZE = 4;
inline constexpr int VERTSIZE = 6;
inline constexpr int HORZRES = 8;
inline constexpr int VERTRES = 10;
inline constexpr int BITSPIXEL = 12;
inline constexpr int PLANES = 14;
inline constexpr int NUMCOLORS = 24;
inline constexpr int ASPECTX = 40;
inline constexpr int ASPECTY = 42;
inline constexpr int ASPECTXY = 44;
inline constexpr int LOGPIXELSX = 88;
inline constexpr int LOGPIXELSY = 90;
inline constexpr int PHYSICALWIDTH = 110;
inline constexpr int PHYSICALHEIGHT = 111;
inline constexpr int PHYSICALOFFSETX = 112;
inline constexpr int PHYSICALOFFSETY = 113;
inline constexpr int DT_RASDISPLAY = 1;
inline constexpr int DT_RASPRINTER = 2;
inline constexpr int DT_METAFILE = 5;

inline constexpr COLORREF CLR_INVALID = 0xFFFFFFFF;

// Width in x; the y of the width is not used. Width 0 is the thinnest line of the device at any scale. The
// transparency, which the platform's record does not have, is 0 for opaque ink, so that a record cleared to
// zeros is opaque, and 255 for none that can be seen. Other raster modes than R2_COPYPEN do not look at it.
struct LOGPEN {
    UINT lopnStyle;
    POINT lopnWidth;
    COLORREF lopnColor;
    BYTE lopnTransparency = 0;
};

struct LOGBRUSH {
    UINT lbStyle;
    COLORREF lbColor;
    LONG lbHatch;
    BYTE lbTransparency = 0;  // as that of a pen
};

inline constexpr int LF_FACESIZE = 32;

// 60 bytes, the layout that archives store. A negative height is the em height in logical units, a positive
// one the cell height (ascent + descent). Angles are tenths of a degree, counter-clockwise on the device.
struct LOGFONT {
    LONG lfHeight;
    LONG lfWidth;
    LONG lfEscapement;
    LONG lfOrientation;
    LONG lfWeight;
    BYTE lfItalic;
    BYTE lfUnderline;
    BYTE lfStrikeOut;
    BYTE lfCharSet;
    BYTE lfOutPrecision;
    BYTE lfClipPrecision;
    BYTE lfQuality;
    BYTE lfPitchAndFamily;
    char lfFaceName[LF_FACESIZE];
};
static_assert(sizeof(LOGFONT) == 60);

// In logical units; tmHeight = tmAscent + tmDescent.
struct TEXTMETRIC {
    LONG tmHeight;
    LONG tmAscent;
    LONG tmDescent;
    LONG tmInternalLeading;
    LONG tmExternalLeading;
    LONG tmAveCharWidth;
    LONG tmMaxCharWidth;
    LONG tmWeight;
    BYTE tmItalic;
    BYTE tmUnderlined;
    BYTE tmStruckOut;
};
