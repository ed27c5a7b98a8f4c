// The method functions of 工具.二进制文件流 that tests and benchmarks call.
#pragma once

#include <zel/zel_types.h>

extern "C" {
extern tagTBaseTypeInfo g_info_BinaryFile;
void BinaryFile_Init(ZelObject*);
void BinaryFile_Free(ZelObject*);
unsigned char* BinaryFile_ReadFile(ZelObject*, unsigned char*, int);
int BinaryFile_GetFileType(ZelObject*, unsigned char*);
}
