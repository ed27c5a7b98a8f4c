// ncl new NAMESPACE DIR: a ready project for a class library of one class,
// built through find_package(zel), with a script and its expected output.
#include "host/new_project.h"

#include <filesystem>
#include <fstream>
#include <ostream>
#include <utility>
#include <vector>

#include <zel/version.h>

#include "host/host_api.h"

namespace ncl {
namespace {

namespace fs = std::filesystem;

// A namespace is one name of the language: letters, digits, '_' and any
// character from U+0080 on that is not punctuation or space; no leading digit.
bool IsNamespace(const std::wstring& name) {
    if (name.empty() || (name[0] >= L'0' && name[0] <= L'9')) return false;
    for (wchar_t c : name) {
        bool ascii = (c >= L'0' && c <= L'9') || (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z') || c == L'_';
        bool wide = c >= 0xC0 && !(c >= 0x2000 && c <= 0x206F) && !(c >= 0x3000 && c <= 0x303F) && !(c >= 0xFF00 && c <= 0xFF20);
        if (!ascii && !wide) return false;
    }
    return true;
}

// Every occurrence of @NS@ becomes the namespace.
std::string Fill(std::string text, const std::string& ns) {
    for (size_t at = text.find("@NS@"); at != std::string::npos; at = text.find("@NS@", at + ns.size()))
        text.replace(at, 4, ns);
    return text;
}

const char kCMakeLists[] = R"(cmake_minimum_required(VERSION 3.20)
project(class_library LANGUAGES CXX)

find_package(zel )" ZEL_VERSION_STRING R"( CONFIG REQUIRED)
zel_add_class_library(TARGET class_library NAME @NS@ SOURCES library.cpp Counter.cpp)

enable_testing()
zel_add_script_test(NAME demo LIBRARY class_library SCRIPT demo.zs EXPECTED demo.out)
)";

const char kLibrary[] = R"(#include <zel/zel.h>

ZEL_LIBRARY(L"@NS@", L"@NS@ 类库");
)";

const char kCounter[] = R"(// @NS@.计数器: a counter with a value, a step method and a static sum.
#include <new>

#include <zel/zel.h>

struct CounterState {
    int value = 0;
};

// The state hangs from the hidden data item 0 of this class's level (1).
ZEL_EXPORT CounterState* _Counter_GetData(ZelObject* obj) {
    return static_cast<CounterState*>(GetDataItemData(obj, 1, 0));
}

ZEL_EXPORT void Counter_Init(ZelObject* obj) { SetDataItemData(obj, 1, 0, new (std::nothrow) CounterState()); }

ZEL_EXPORT void Counter_Free(ZelObject* obj) {
    delete _Counter_GetData(obj);
    SetDataItemData(obj, 1, 0, nullptr);
}

ZEL_EXPORT int Counter_GetValue(ZelObject* obj) {
    CounterState* state = _Counter_GetData(obj);
    return state ? state->value : 0;
}

ZEL_EXPORT void Counter_SetValue(ZelObject* obj, int value) {
    if (CounterState* state = _Counter_GetData(obj)) state->value = value;
}

ZEL_EXPORT int Counter_Add(ZelObject* obj, int step) {
    CounterState* state = _Counter_GetData(obj);
    return state ? (state->value += step) : 0;
}

// A static method takes no object.
ZEL_EXPORT int Counter_Sum(int a, int b) { return a + b; }

using namespace zel;

static tagParamItem kValue[] = {Param(L"值", L"_i")};
static tagParamItem kStep[] = {Param(L"步长", L"_i")};
static tagParamItem kTerms[] = {Param(L"甲", L"_i"), Param(L"乙", L"_i")};
static tagMethodItem kMethods[] = {
    Getter(L"值", L"_i", Counter_GetValue, L"当前的值"),
    Setter(L"值", kValue, Counter_SetValue),
    Method(L"增加", L"_i", kStep, Counter_Add, L"加上步长，返回新值"),
    Static(L"求和", L"_i", kTerms, Counter_Sum, L"两数之和"),
};
static tagElementItem kElements[] = {HiddenState()};
ZEL_RECORD(tagTBaseTypeInfo, g_info_Counter) = ClassRecord(L"@NS@.计数器", L"计数器", kMethods, kElements);
ZEL_REGISTER_CLASS(g_info_Counter);
)";

const char kScript[] = R"(c = new @NS@.计数器
c.值 = 40
print c.增加(2)
print c.值
print @NS@.计数器.求和(1, 2)
expect c.值 == 42
)";

const char kExpected[] = "42\n42\n3\n";

const char kReadme[] = R"(# @NS@

The class library `@NS@.ncl`, with one class, `@NS@.计数器`.

Build it against the installed SDK (P is the prefix it was installed into),
then check it and run `demo.zs` under the reference audit:

```sh
cmake -S . -B build -DCMAKE_PREFIX_PATH=P && cmake --build build
ctest --test-dir build --output-on-failure
```

By hand: `P/bin/ncl check build/@NS@.ncl` and
`ZELCLS_PATHS=build P/bin/ncl run --audit demo.zs`.
)";

}  // namespace

int NewProject(const std::string& nameSpace, const std::string& dir, std::ostream& out, std::ostream& err) {
    if (!IsNamespace(zelhost::FromUtf8(nameSpace))) {
        err << "ncl new: \"" << nameSpace << "\" is not a namespace (letters, digits and '_', no leading digit)\n";
        return 1;
    }
    // A library of one of these names would hide the host or 工具 beside ncl.
    if (nameSpace == "系统" || nameSpace == "工具") {
        err << "ncl new: " << nameSpace << " is the namespace of a library that comes with ncl\n";
        return 1;
    }
    std::error_code ec;
    fs::path root(dir);
    if (fs::exists(root, ec) && !(fs::is_directory(root, ec) && fs::is_empty(root, ec))) {
        err << "ncl new: " << dir << " exists and is not an empty folder\n";
        return 1;
    }
    if (!fs::create_directories(root, ec) && ec) {
        err << "ncl new: cannot create " << dir << ": " << ec.message() << "\n";
        return 1;
    }
    const std::vector<std::pair<const char*, const char*>> files = {
        {"CMakeLists.txt", kCMakeLists}, {"library.cpp", kLibrary}, {"Counter.cpp", kCounter},
        {"demo.zs", kScript},            {"demo.out", kExpected},   {"README.md", kReadme}};
    for (const auto& [name, text] : files) {
        std::ofstream file(root / name, std::ios::binary);
        if (!(file << Fill(text, nameSpace)) || !file.flush()) {
            err << "ncl new: cannot write " << (root / name).string() << "\n";
            return 1;
        }
    }
    out << "created " << dir << ": the class library " << nameSpace << ".ncl with the class " << nameSpace
        << ".计数器\n";
    return 0;
}

}  // namespace ncl
