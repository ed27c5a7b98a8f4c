// Conversions between the runtime's basic values: integer, double, logical,
// wide text and ZelBin byte sets. Every text or byte set returned is new and
// belongs to the caller (zel_free).
#pragma once

#include <zel/zel_types.h>

ZEL_API unsigned char* MStringToMBin(wchar_t* text);
ZEL_API unsigned char* MDoubleToMBin(double value);
ZEL_API unsigned char* MIntToMBin(int value);
ZEL_API double MBinToMDouble(void* bin);
ZEL_API int MBinToInt(void* bin);
ZEL_API double MStringToMDouble(wchar_t* text);
ZEL_API int MStringToInt(wchar_t* text);
ZEL_API wchar_t* MBinToMString(void* bin);
ZEL_API wchar_t* MBoolToMString(int value);
ZEL_API wchar_t* MDoubleToMString(double value);
ZEL_API wchar_t* MIntToMString(int value);
