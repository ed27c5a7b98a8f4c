// The method functions of the file classes (工具.文件, 工具.文本文件,
// 工具.二进制文件流, 工具.内存文件) that the io tests call directly.
#pragma once

#include "binary_file_methods.h"
#include "io/File.h"
#include <zel/zel_types.h>

extern "C" {
extern tagTBaseTypeInfo g_info_File, g_info_TextFile, g_info_MemoryFile;
void File_Init(ZelObject*);
void File_Free(ZelObject*);
unsigned char* File_Read(ZelObject*, int, int*);
int File_Write(ZelObject*, unsigned char*);
int File_Seek(ZelObject*, unsigned char*, int);
int File_GetLength(ZelObject*);
int File_Open(ZelObject*, unsigned char*, int);
void TextFile_Init(ZelObject*);
void TextFile_Free(ZelObject*);
CTextFile* _TextFile_GetData(ZelObject*);
unsigned char* TextFile_Read(ZelObject*, int, int*);
int TextFile_Write(ZelObject*, unsigned char*);
int TextFile_Seek(ZelObject*, unsigned char*, int);
int TextFile_SeekCurrent(ZelObject*, int);
int TextFile_SeekFromEnd(ZelObject*, int);
int TextFile_GetPosition(ZelObject*);
int TextFile_Open(ZelObject*, unsigned char*, int, int);
int BinaryFile_WriteFile(ZelObject*, unsigned char*, unsigned char*, int);
void MemoryFile_Init(ZelObject*);
void MemoryFile_Free(ZelObject*);
void* MemoryFile_Clone(ZelObject*);
unsigned char* MemoryFile_Read(ZelObject*, int, int*);
int MemoryFile_Write(ZelObject*, unsigned char*);
int MemoryFile_SeekFromBegin(ZelObject*, int);
int MemoryFile_GetLength(ZelObject*);
int MemoryFile_GetPosition(ZelObject*);
unsigned char* MemoryFile_GetBytes(ZelObject*);
}
