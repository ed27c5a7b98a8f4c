// Calls the host refuses before anything runs, and how values and type
// strings are shown.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/host_api.h"
#include "script_run.h"

using namespace zelhost;

namespace {

using hosttest::Cls;

}  // namespace

TEST(CallRefusals, BadItemsCountsAndReceiversNeverCallTheFunction) {
    ClassInfo* counter = Cls(L"测试.计数器");
    ASSERT_NE(counter, nullptr);
    BeginStatement("calls:1");
    std::string e;
    ZelObject* obj = NewObject(counter, &e);
    ASSERT_NE(obj, nullptr) << e;
    const struct {
        ZelObject* obj;
        int item;
        std::vector<Value> args;
        const char* error;
    } cases[] = {
        {obj, -1, {}, "no such method item"},
        {obj, 2, {}, "测试.计数器.加 takes 1 argument, got 0"},
        {obj, 4, {Value::Int(1)}, "测试.计数器.拼接 takes 2 arguments, got 1"},
        {nullptr, 2, {Value::Int(1)}, "测试.计数器.加 needs an object"},
        {obj, 2, {Value()}, "测试.计数器.加: argument 1 (增量): expected 整数, got nothing"},
        {obj, 2, {Value::Handle(VK::Array, obj)}, "测试.计数器.加: argument 1 (增量): expected 整数, got 数组"},
    };
    for (const auto& c : cases) {
        CallResult r = CallMethod(c.obj, counter, c.item, c.args);
        EXPECT_FALSE(r.ok) << c.error;
        EXPECT_FALSE(r.raised) << c.error;
        EXPECT_EQ(r.error, c.error);
    }
    // The item without a function and without a binding.
    std::string le;
    Library* broken = OpenLibrary(std::string(ZEL_FIXTURE_DIR) + "/坏.ncl", &le);
    ASSERT_NE(broken, nullptr) << le;
    ClassInfo* bad = ClassOfRecord(broken, broken->Find(L"坏.类"), &le);
    ASSERT_NE(bad, nullptr) << le;
    CallResult none = CallMethod(obj, bad, 1, {});
    EXPECT_EQ(none.error, "坏.类.无函数 has no function");
    EXPECT_EQ(CallFunction(nullptr, {}, {}, L"", false).error, "no function");
    EndStatement();
    EXPECT_TRUE(AuditAndReset().empty());
}

TEST(Values, FormatsOfEveryKind) {
    int32_t array[5] = {1, 3, 7, 8, 9};  // a header word, the count, the items
    int32_t longArray[12] = {1, 10, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
    int foreignWord = 0;
    const std::pair<Value, const char*> cases[] = {
        {Value(), "(nothing)"},
        {Value::Bool(0), "假"},
        {Value::Bool(1), "真"},
        {Value::Bool(-1), "真(-1)"},
        {Value::Double(0.1), "0.1"},
        {Value::Handle(VK::Array, array), "数组[7x8x9]"},
        {Value::Handle(VK::Array, longArray), "数组[0x1x2x3x4x5x6x7]"},  // the first eight items
        {Value::Handle(VK::Array, nullptr), "null"},
    };
    for (const auto& [v, shown] : cases) EXPECT_EQ(FormatValue(v), shown);
    Value foreign;
    foreign.kind = VK::Foreign;
    foreign.h = &foreignWord;
    EXPECT_EQ(FormatValue(foreign).rfind("foreign@", 0), 0u);
    EXPECT_EQ(FormatValue(Value::Handle(VK::Object, &foreignWord)).rfind("对象@", 0), 0u);  // not the host's
}

TEST(Values, TypeNamesAndUtf8) {
    const std::pair<const wchar_t*, const char*> types[] = {
        {L"_i", "整数"},          {L"@_i", "整数数组"},   {L"@测试.计数器", "测试.计数器[]"}, {L"测试.计数器", "测试.计数器"},
        {nullptr, ""},            {L"_zz", "_zz"},
    };
    for (const auto& [type, shown] : types) EXPECT_EQ(ShowTypeName(type), shown) << shown;
    // One, two, three and four bytes per code point, both ways.
    const std::wstring wide = L"a\u00e9\u4e2d\U0001F600";
    EXPECT_EQ(ToUtf8(wide), "a\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80");
    EXPECT_EQ(FromUtf8(ToUtf8(wide)), wide);
    EXPECT_EQ(ToUtf8(static_cast<const wchar_t*>(nullptr)), "");
}
