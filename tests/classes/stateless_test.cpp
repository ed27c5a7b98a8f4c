// An object whose state is missing (its Init hook could not allocate it, or
// never ran) answers every method with a neutral result: no crash, no read
// through the missing state, nothing made that is not released.
#include <gtest/gtest.h>

#include <cwchar>
#include <iterator>
#include <set>
#include <string>

#include <zel/registry.h>
#include <zel/services.h>

#include "common/counting_runtime.h"
#include "common/test_object.h"

namespace {

// Every argument word is zero: integers 0, doubles 0.0, null texts, byte sets
// and objects. Calls are cdecl, so words a method does not take are harmless.
using Words = int (*)(ZelObject*, int, int, int, int, int, int, int, int);
using Doubles = double (*)(ZelObject*, int, int, int, int, int, int, int, int);

bool IsValueType(const wchar_t* type) {
    return type && (std::wcscmp(type, L"_s") == 0 || std::wcscmp(type, L"_bn") == 0);
}

// Classes that still read through a missing state (known faults, fixed apart).
const std::set<std::wstring> kNotYet = {L"工具.文本类"};

// The file classes keep their state above the levels of the file interface.
int LevelOf(const tagTBaseTypeInfo* record) {
    if (std::wcscmp(record->name, L"工具.文件") == 0) return 2;
    return std::wcscmp(record->name, L"工具.文本文件") == 0 ? 3 : 1;
}

}  // namespace

TEST(Stateless, EveryMethodOfEveryClassAnswersNeutrally) {
    CountingRuntime runtime;
    tagTBaseTypeInfo* records[256];
    int n = zel::EnumClassRecords(&g_zellib_info, records, int(std::size(records)));
    int called = 0;
    for (int i = 0; i < n; ++i) {
        tagTBaseTypeInfo* record = records[i];
        if (record->kind != ZEL_KIND_CLASS || record->elementCount == 0) continue;
        if (kNotYet.count(record->name)) continue;
        TestObject object(record, nullptr, nullptr, LevelOf(record));  // no Init hook: no state
        for (int m = 0; m < record->methodCount; ++m) {
            const tagMethodItem& method = record->methods[m];
            if (!method.function || (method.flags & ZEL_METHOD_STATIC_BIT)) continue;
            SCOPED_TRACE(std::wstring(record->name) + L"." + method.name);
            try {
                if (method.returnType && std::wcscmp(method.returnType, L"_db") == 0) {
                    reinterpret_cast<Doubles>(method.function)(object, 0, 0, 0, 0, 0, 0, 0, 0);
                } else {
                    int result = reinterpret_cast<Words>(method.function)(object, 0, 0, 0, 0, 0, 0, 0, 0);
                    if (IsValueType(method.returnType)) zel::Release(reinterpret_cast<void*>(result));
                }
            } catch (...) {
                // Methods that raise may raise here too; they must not crash.
            }
            ++called;
        }
    }
    EXPECT_GT(called, 100);
    EXPECT_EQ(runtime.LiveValues(), 0);
}
