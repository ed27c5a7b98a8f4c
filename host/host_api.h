// The C++ API of the runtime host 系统.ncl, used by the `ncl` tool and the
// host's unit tests. Everything else inside 系统.ncl is hidden; the library
// exports only ZelInitSysLib, the g_info_ records of its own classes and the
// names declared here (namespace zelhost).
//
// The host is one per process: libraries, classes and handles live in
// process-wide tables. It is not thread-safe beyond the runtime lock that the
// class libraries take through service 0/1.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include <zel/zel_types.h>

#define ZELHOST_API __attribute__((visibility("default")))

extern "C" ZELHOST_API ZelObject* ZelInitSysLib();

namespace zelhost {

struct Library;
struct ClassInfo;

// ---------------------------------------------------------------- text
ZELHOST_API std::wstring FromUtf8(const std::string& s);
ZELHOST_API std::string ToUtf8(const std::wstring& s);
ZELHOST_API std::string ToUtf8(const wchar_t* s);  // null gives ""
ZELHOST_API unsigned TextHash(const wchar_t* s);    // GetTextHash: sum of the code units
ZELHOST_API std::string ShowTypeName(const wchar_t* type);  // the language's show names of type strings

// ---------------------------------------------------------------- libraries
struct ZELHOST_API Library {
    std::string path;            // as opened
    void* handle = nullptr;      // dlopen handle
    ZelLibInfo* info = nullptr;
    bool isHost = false;         // 系统.ncl itself
    std::string notifyError;     // non-empty when ZelNotifyLib failed
    // Exported dynamic symbols (defined ones) read from the ELF .dynsym.
    std::vector<std::string> exports;
    // Record name of each class record, learnt from g_info_<Record> exports.
    std::vector<std::pair<const void*, std::string>> recordNames;
    std::string RecordName(const void* record) const;  // "" when unknown
    void* Export(const std::string& name) const;       // dlsym, null when absent
    // All records the library enumerates (class and interface records).
    std::vector<tagTBaseTypeInfo*> Records() const;
    tagTBaseTypeInfo* Find(const std::wstring& name) const;
};

// Opens a class library by path (or returns it when already open), reads its
// record, and hands the runtime over (ZelNotifyLib code 1). A path naming
// 系统.ncl gives the host's own library. Null and a message on failure.
ZELHOST_API Library* OpenLibrary(const std::string& path, std::string* error);
// The library of a class name's namespace prefix, searched in ZELCLS_PATHS.
ZELHOST_API Library* LibraryForClass(const std::wstring& className, std::string* error);
ZELHOST_API Library* HostLibrary();
// The ZELCLS_PATHS directories, split at ',' and ';', each ending in '/'.
ZELHOST_API std::vector<std::string> SearchPaths();

// ---------------------------------------------------------------- classes
enum HookKind { HOOK_INIT, HOOK_FREE, HOOK_CLONE, HOOK_SERIALIZE, HOOK_UNSERIALIZE, HOOK_TOSTRING, HOOK_COUNT };
ZELHOST_API const char* HookName(int hook);  // "Init", ...

struct ZELHOST_API Level {
    tagTBaseTypeInfo* record = nullptr;  // a class record, or an interface record (kind 2)
    ClassInfo* cls = nullptr;
    int words = 0;                       // data block size in words
};

struct ZELHOST_API ClassInfo {
    std::wstring name;
    Library* lib = nullptr;
    tagTBaseTypeInfo* record = nullptr;
    int kind = 1;                  // 1 class, 2 interface (record is a tagTInterfaceInfo)
    std::string recordName;        // e.g. "String"; "" when the library does not export g_info_
    void* hooks[HOOK_COUNT] = {};  // exported <Record>_<Hook>, or null
    std::vector<Level> levels;     // level 0 = 系统.对象 ... last = this class
    std::vector<int> chain;        // the class chain handed to objects: n, then {record, word} pairs
    int methodCount() const;
    tagMethodItem* methods() const;
    int elementCount() const;       // 0 for interfaces
    tagElementItem* elements() const;
};

// Finds (and loads the library of) a class by full name. Null and a message
// when the class or its library cannot be found.
ZELHOST_API ClassInfo* FindClass(const std::wstring& name, std::string* error);
ZELHOST_API ClassInfo* ClassOfRecord(Library* lib, tagTBaseTypeInfo* record, std::string* error);

// How a method item is called: its function or the export it is bound to.
struct ZELHOST_API Binding {
    void* function = nullptr;
    std::string boundTo;     // export name when bound by the runtime ("" when the item has its own)
    int leadingWords = 0;    // calling irregularity: extra 32-bit 0 words before the declared arguments
};
ZELHOST_API Binding BindMethod(ClassInfo* cls, int itemIndex);
// The declaring level's class for the item index of ClassInfo cls.

// ---------------------------------------------------------------- values
enum class VK { Void, Null, Int, Double, Bool, Text, Bin, Object, Array, Foreign };
struct ZELHOST_API Value {
    VK kind = VK::Void;
    int32_t i = 0;        // Int and Bool
    double d = 0;         // Double
    void* h = nullptr;    // Text, Bin, Object, Array, Foreign
    bool foreign = false; // a handle the host never made (not counted)
    static Value Int(int32_t v) { Value x; x.kind = VK::Int; x.i = v; return x; }
    static Value Bool(int32_t v) { Value x; x.kind = VK::Bool; x.i = v; return x; }
    static Value Double(double v) { Value x; x.kind = VK::Double; x.d = v; return x; }
    static Value Null() { Value x; x.kind = VK::Null; return x; }
    static Value Handle(VK k, void* p) { Value x; x.kind = p ? k : VK::Null; x.h = p; return x; }
};
ZELHOST_API std::string FormatValue(const Value& v);  // as `print` shows it

// ---------------------------------------------------------------- handles
// The statement context: where new handles are made ("file:line") and the
// statement that owns fresh handles. Outside a statement, "library".
ZELHOST_API void BeginStatement(const std::string& where);
ZELHOST_API void EndStatement();  // frees the statement's fresh handles nothing holds
ZELHOST_API unsigned char* NewText(const wchar_t* s);
ZELHOST_API unsigned char* NewBin(const void* data, int length);
// A new object of the class: chain, zeroed data blocks, Init hooks base first.
// Null and a message when an Init hook raised.
ZELHOST_API ZelObject* NewObject(ClassInfo* cls, std::string* error);
ZELHOST_API void* AddRef(void* handle);
ZELHOST_API void Release(void* handle);
// The reference count of a handle the host made, -1 when unknown, -2 when freed.
ZELHOST_API int RefCount(void* handle);
ZELHOST_API bool IsLive(void* handle);
ZELHOST_API bool IsConstant(const void* p);
ZELHOST_API ClassInfo* ObjectClass(ZelObject* obj);  // null when not an object of the host
ZELHOST_API int ObjectId(ZelObject* obj);            // 1, 2, ... in order of creation
// The current statement takes one reference on a handle (a literal, a new
// object, a method result) and drops it at EndStatement. Constants, null and
// handles the host never made are left alone.
ZELHOST_API void StatementHold(void* handle);

struct ZELHOST_API Finding {
    std::string kind;     // "leak", "over-release", "unknown-release", "unknown-addref", "foreign-result"
    std::string message;  // one line
};
// Ends a run: reports live handles nothing holds as leaks, then frees every
// handle (running the Free hooks of live objects) and clears the tables.
ZELHOST_API std::vector<Finding> AuditAndReset();

// Error reports (service 5) since the last TakeReports(), formatted as the library's error reports are.
ZELHOST_API std::vector<std::string> TakeReports();
// The report text of service 5 (the error-report formats, without the newline).
ZELHOST_API std::string FormatReport(const wchar_t* library, int code, const wchar_t* message);
// Where service 5 prints (default: standard error). Null restores the default.
ZELHOST_API void SetReportStream(std::ostream* out);

// ---------------------------------------------------------------- calls
struct ZELHOST_API CallResult {
    bool ok = false;          // false: the call did not complete (see error)
    bool raised = false;      // an exception escaped the method
    std::string error;        // message when !ok
    Value value;              // the result (Void for "")
    int32_t success = 1;      // the success word (preset to 1)
};
// Calls method item `itemIndex` of the level class `owner` (found in obj's
// chain) with obj first (unless static) and the arguments (checked against the
// parameter types). Arguments are not consumed; a handle result is owned by
// the current statement (see Adopt).
ZELHOST_API CallResult CallMethod(ZelObject* obj, ClassInfo* owner, int itemIndex, const std::vector<Value>& args);
// Calls slot `slot` of an interface entry's table with obj first.
ZELHOST_API CallResult CallSlot(ZelObject* obj, void* function, const tagMethodItem* member,
                                const std::vector<Value>& args);
// The raw libffi call: fn(args...) with argument types from type strings
// ("_i", "_b", "_db", "_s", "_bn", class names, "@..."), result type string.
ZELHOST_API CallResult CallFunction(void* fn, const std::vector<std::wstring>& types, const std::vector<Value>& args,
                                    const std::wstring& resultType, bool passSuccessWord);

// What the host is calling right now ("工具.文本类.删除 at f.zs:3"), or "";
// a fixed buffer, safe to read from a signal handler.
ZELHOST_API const char* CallContext();

// ---------------------------------------------------------------- the tool
struct RunOptions {
    bool audit = false;  // findings fail the run
};
// Runs a script; returns the exit status (0 success). Output of `print` goes
// to out; the first error ("FILE:LINE:COLUMN: error: message", the source line
// and a caret line) stops the run; it and the audit findings go to err.
// A script that is not valid UTF-8 is refused before any line runs.
ZELHOST_API int RunScript(std::istream& in, const std::string& file, const RunOptions& options, std::ostream& out,
                          std::ostream& err);

// Script lines run one at a time, as `ncl run` and `ncl repl` run them.
class ZELHOST_API ScriptSession {
public:
    ScriptSession(const std::string& file, std::ostream& out, std::ostream& err);
    ~ScriptSession();
    ScriptSession(const ScriptSession&) = delete;
    ScriptSession& operator=(const ScriptSession&) = delete;
    // Runs the next line; `echo` prints the value of an expression statement.
    // False after an error, whose diagnostic has gone to err.
    bool RunLine(const std::string& raw, bool echo);
    // Counts a line that is not a statement (a command of the REPL).
    void SkipLine();
    // Whole-word replacements for the word before the cursor: variables,
    // keywords, namespaces, class names, and the members of a variable's class.
    std::vector<std::string> Complete(const std::string& word);
    // Drops the variables (last defined first), then audits and frees every
    // handle. The session can go on afresh. False when dropping them made a
    // library report an error (printed to err).
    bool End(std::vector<Finding>& findings);

    struct State;

private:
    State* state_;
};

// Descriptions of a library; each returns the exit status.
ZELHOST_API int ListLibrary(Library* lib, std::ostream& out, std::ostream& err);
ZELHOST_API int ShowClass(Library* lib, const std::wstring& className, std::ostream& out, std::ostream& err);
ZELHOST_API int CheckLibrary(Library* lib, std::ostream& out, std::ostream& err);
ZELHOST_API int DocLibrary(Library* lib, std::ostream& out, std::ostream& err);

}  // namespace zelhost
