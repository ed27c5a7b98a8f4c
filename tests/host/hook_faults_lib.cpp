// 抛.ncl: classes whose Init or Free hook raises, for the host's handling of
// failing hooks: a new object that cannot be made, an object whose release
// reports an error, and the same at the end of a script.
#include <stdexcept>

#include "fixture_records.h"

using namespace fixture;

namespace {
tagElementItem kElements[] = {E(L"", L"_i")};
}  // namespace

ZEL_EXPORT int InitFails_Init(ZelObject*) { throw std::runtime_error("no state"); }
ZEL_EXPORT int FreeFails_Free(ZelObject*) { throw std::runtime_error("state lost"); }
ZEL_EXPORT int FreeFails_Init(ZelObject*) { return 0; }

ZEL_RECORD(tagTBaseTypeInfo, g_info_InitFails) = Class(L"抛.初始化", L"系统.对象", nullptr, 0, kElements, 1);
ZEL_RECORD(tagTBaseTypeInfo, g_info_FreeFails) = Class(L"抛.释放", L"系统.对象", nullptr, 0, kElements, 1);

namespace {
tagTBaseTypeInfo* kRecords[] = {&g_info_InitFails, &g_info_FreeFails};
ZelLibInfo g_lib = Library<kRecords>(L"抛", L"");
}  // namespace

ZEL_EXPORT ZelLibInfo* ZelGetLibInfo() { return &g_lib; }
