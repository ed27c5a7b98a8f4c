// Serialize and Unserialize hooks write and read through the stream object
// they are given: the slots of the interfaces 系统.输出流 and 系统.输入流 that
// its class record lists (slot functions take the stream object first).
#pragma once

#include <zel/zel_types.h>

namespace zel {
// Slot `slot` (1-based) of the named interface, searched along the object's
// class chain from its own class down; null when the object does not have it.
void* InterfaceSlot(ZelObject* obj, const wchar_t* interfaceName, int slot);

// Each returns false (writes) or the stream's sentinel (reads: -1, -1.0, 0,
// null) when the stream lacks the interface.
bool StreamWriteInt(ZelObject* stream, int value);
bool StreamWriteDouble(ZelObject* stream, double value);
bool StreamWriteBool(ZelObject* stream, int value);
bool StreamWriteText(ZelObject* stream, unsigned char* text);
bool StreamWriteBin(ZelObject* stream, unsigned char* bin);
int StreamReadInt(ZelObject* stream);
double StreamReadDouble(ZelObject* stream);
int StreamReadBool(ZelObject* stream);
unsigned char* StreamReadText(ZelObject* stream);
unsigned char* StreamReadBin(ZelObject* stream);
}  // namespace zel
