// `ncl repl`: reads script lines, runs each in one session, prints the value of
// each expression statement, and keeps going after an error.
#include "host/repl.h"

#include <dlfcn.h>
#include <unistd.h>

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>

namespace ncl {
namespace {

// libedit, loaded when present so that neither the build nor the tool needs it:
// the few entry points of its readline-compatible interface.
struct Editline {
    using Generator = char* (*)(const char*, int);
    void* handle = nullptr;
    char* (*readline)(const char*) = nullptr;
    int (*add_history)(const char*) = nullptr;
    int (*read_history)(const char*) = nullptr;
    int (*write_history)(const char*) = nullptr;
    Generator* completionEntry = nullptr;  // rl_completion_entry_function
    const char** wordBreaks = nullptr;     // rl_basic_word_break_characters
    int* appendCharacter = nullptr;        // rl_completion_append_character

    bool Load() {
        handle = dlopen("libedit.so.2", RTLD_NOW | RTLD_LOCAL);
        if (!handle) return false;
        readline = reinterpret_cast<char* (*)(const char*)>(dlsym(handle, "readline"));
        add_history = reinterpret_cast<int (*)(const char*)>(dlsym(handle, "add_history"));
        read_history = reinterpret_cast<int (*)(const char*)>(dlsym(handle, "read_history"));
        write_history = reinterpret_cast<int (*)(const char*)>(dlsym(handle, "write_history"));
        completionEntry = static_cast<Generator*>(dlsym(handle, "rl_completion_entry_function"));
        wordBreaks = static_cast<const char**>(dlsym(handle, "rl_basic_word_break_characters"));
        appendCharacter = static_cast<int*>(dlsym(handle, "rl_completion_append_character"));
        return readline && add_history;
    }
};

zelhost::ScriptSession* g_session = nullptr;  // what the completion callback asks
std::vector<std::string> g_extraNamespaces;   // libraries opened by path, "名." each

// The readline generator: state 0 starts a new word; each call returns one
// match in memory the editor frees, null after the last.
char* Generate(const char* text, int state) {
    static std::vector<std::string> matches;
    static size_t next = 0;
    if (state == 0) {
        matches = g_session ? g_session->Complete(text) : std::vector<std::string>{};
        size_t n = std::strlen(text);
        for (const std::string& ns : g_extraNamespaces)
            if (ns.compare(0, n, text) == 0) matches.push_back(ns);
        next = 0;
    }
    return next < matches.size() ? strdup(matches[next++].c_str()) : nullptr;
}

class LineReader {
public:
    LineReader() : terminal_(isatty(0) && isatty(1)) {
        if (!terminal_ || !editline_.Load()) return;
        // Multibyte editing follows the user's locale.
        std::setlocale(LC_CTYPE, "");
        if (editline_.completionEntry) *editline_.completionEntry = Generate;
        // A word runs through dots, so that "变量.取" completes as a whole.
        if (editline_.wordBreaks) *editline_.wordBreaks = " \t\"(),=";
        if (editline_.appendCharacter) *editline_.appendCharacter = 0;
        editing_ = true;
        const char* home = std::getenv("HOME");
        if (home && *home) historyFile_ = std::string(home) + "/.ncl_history";
        if (!historyFile_.empty() && editline_.read_history) editline_.read_history(historyFile_.c_str());
    }
    ~LineReader() {
        // The history of earlier sessions, kept when the home folder allows.
        if (editing_ && !historyFile_.empty() && editline_.write_history)
            editline_.write_history(historyFile_.c_str());
    }
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;
    bool terminal() const { return terminal_; }
    bool editing() const { return editing_; }

    bool Read(std::string& line, std::ostream& out) {
        if (editing_) {
            char* s = editline_.readline("ncl> ");
            if (!s) return false;
            line = s;
            std::free(s);
            if (line.find_first_not_of(" \t") != std::string::npos) editline_.add_history(line.c_str());
            return true;
        }
        if (terminal_) out << "ncl> " << std::flush;
        return static_cast<bool>(std::getline(std::cin, line));
    }

private:
    bool terminal_;
    bool editing_ = false;
    Editline editline_;
    std::string historyFile_;
};

const char kHelp[] =
    "Each line is a statement of the script language:\n"
    "  x = new 工具.文本类        make an object and name it\n"
    "  x.文本 = \"ab\"              set a property\n"
    "  x.取长度()                 an expression: its value is printed\n"
    "  print a, b                 print values\n"
    "  expect a == b              check a value; expect error x.f() checks that a call raises\n"
    "  load \"path/名.ncl\"          load a class library\n"
    "Commands:\n"
    "  :help                      this text\n"
    "  :show CLASS                the class's elements, properties and methods\n"
    "  :audit                     drop every variable, then report leaks and bad releases\n"
    "  :quit                      leave (so does end of input)\n"
    "On a terminal with libedit, Tab completes variables, class names and the members of a\n"
    "variable's class, and the arrow keys recall earlier lines (kept in ~/.ncl_history).\n";

// Drops the variables and audits; the findings go to err.
std::vector<zelhost::Finding> EndSession(zelhost::ScriptSession& session, std::ostream& err) {
    std::vector<zelhost::Finding> findings;
    session.End(findings);
    for (const zelhost::Finding& f : findings) err << "audit: " << f.message << "\n";
    return findings;
}

void Audit(zelhost::ScriptSession& session, std::ostream& out, std::ostream& err) {
    std::vector<zelhost::Finding> findings = EndSession(session, err);
    if (findings.empty()) out << "audit: clean; the variables are dropped\n";
    else out << "audit: " << findings.size() << " finding(s); the variables are dropped\n";
}

// A line starting with ':'; false for :quit.
bool Command(const std::string& line, zelhost::ScriptSession& session, std::ostream& out, std::ostream& err) {
    size_t space = line.find_first_of(" \t");
    std::string cmd = line.substr(0, space);
    std::string arg;
    if (space != std::string::npos) {
        size_t a = line.find_first_not_of(" \t", space), b = line.find_last_not_of(" \t");
        if (a != std::string::npos) arg = line.substr(a, b - a + 1);
    }
    if (cmd == ":quit" || cmd == ":q") return false;
    if (cmd == ":help") {
        out << kHelp;
    } else if (cmd == ":audit") {
        Audit(session, out, err);
    } else if (cmd == ":show" && !arg.empty()) {
        std::string e;
        zelhost::ClassInfo* cls = zelhost::FindClass(zelhost::FromUtf8(arg), &e);
        if (cls) zelhost::ShowClass(cls->lib, cls->name, out, err);
        else err << "error: " << e << "\n";
    } else if (cmd == ":show") {
        err << "error: :show needs a class name, as in :show 工具.文本类\n";
    } else {
        err << "error: unknown command " << cmd << " (:help lists the commands)\n";
    }
    out.flush();
    err.flush();
    return true;
}

}  // namespace

int RunRepl(const std::vector<zelhost::Library*>& libraries, std::ostream& out, std::ostream& err) {
    for (zelhost::Library* lib : libraries)
        if (lib->info && lib->info->name) g_extraNamespaces.push_back(zelhost::ToUtf8(lib->info->name) + ".");
    LineReader reader;
    zelhost::ScriptSession session("<stdin>", out, err);
    g_session = &session;
    if (reader.terminal())
        out << "ncl repl: one statement a line; :help for help, :quit to leave"
            << (reader.editing() ? "" : " (line editing needs libedit.so.2)") << "\n";
    out.flush();
    std::string line;
    while (reader.Read(line, out)) {
        size_t first = line.find_first_not_of(" \t");
        if (first != std::string::npos && line[first] == ':') {
            session.SkipLine();
            if (!Command(line.substr(first), session, out, err)) break;
            continue;
        }
        session.RunLine(line, true);
    }
    g_session = nullptr;
    EndSession(session, err);
    out.flush();
    err.flush();
    return 0;
}

}  // namespace ncl
