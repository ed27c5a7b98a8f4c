// The 工具 library record and its entry points.
#include <zel/library.h>

ZEL_LIBRARY(L"工具", L"本类库提供系统工具类");
