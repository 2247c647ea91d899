// The whole library.
#pragma once

#include <zel/DBField.h>
#include <zel/DrawColor.h>
#include <zel/DrawFont.h>
#include <zel/DrawPen.h>
#include <zel/DrawSymbol.h>
#include <zel/Mapping.h>
#include <zel/Zel2.h>
#include <zel/Zel2DaoPointSet.h>
#include <zel/Zel2Graph.h>
#include <zel/Zel2Main.h>
#include <zel/Zel2PointSet.h>
#include <zel/Zel2Rect.h>
#include <zel/Zel2Selection.h>
#include <zel/Zel2Set.h>
#include <zel/Zel2Text.h>
#include <zel/Zel2Tools.h>
#include <zel/ZelDocument.h>
#include <zel/ZelExport.h>
#include <zel/ZelRules.h>
#include <zel/platform/DC.h>
#include <zel/platform/Dao.h>
#include <zel/platform/Exception.h>
#include <zel/platform/MessageBox.h>
#include <zel/platform/PrintInfo.h>
#include <zel/platform/Wnd.h>
