// The method functions of the file classes (工具.文件, 工具.文本文件,
// 工具.二进制文件流, 工具.内存文件) that the io tests call directly.
#pragma once

#include "binary_file_methods.h"
#include "io/File.h"
#include <zel/zel_types.h>

extern "C" {
extern tagTBaseTypeInfo g_info_File, g_info_TextFile, g_info_MemoryFile;
void File_Init(ZelObject*), File_Free(ZelObject*);
unsigned char* File_Read(ZelObject*, int, int*);
int File_Write(ZelObject*, unsigned char*), File_Open(ZelObject*, unsigned char*, int);
void TextFile_Init(ZelObject*), TextFile_Free(ZelObject*);
CTextFile* _TextFile_GetData(ZelObject*);
unsigned char* TextFile_Read(ZelObject*, int, int*);
int TextFile_Write(ZelObject*, unsigned char*), TextFile_Seek(ZelObject*, unsigned char*, int);
int TextFile_SeekCurrent(ZelObject*, int), TextFile_SeekFromEnd(ZelObject*, int), TextFile_GetPosition(ZelObject*);
int TextFile_Open(ZelObject*, unsigned char*, int, int);
int BinaryFile_WriteFile(ZelObject*, unsigned char*, unsigned char*, int);
void MemoryFile_Init(ZelObject*), MemoryFile_Free(ZelObject*);
void* MemoryFile_Clone(ZelObject*);
int MemoryFile_Write(ZelObject*, unsigned char*), MemoryFile_SeekFromBegin(ZelObject*, int), MemoryFile_GetPosition(ZelObject*);
unsigned char *MemoryFile_GetBytes(ZelObject*), *MemoryFile_Read(ZelObject*, int, int*);
}
