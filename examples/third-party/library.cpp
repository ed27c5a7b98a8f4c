#include <zel/zel.h>

ZEL_LIBRARY(L"词频", L"统计文本中各个单词出现的次数");
