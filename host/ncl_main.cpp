// ncl: list, show, check, document and drive class libraries through the
// runtime host 系统.ncl.
#include <dlfcn.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <streambuf>
#include <string>

#include <zel/version.h>

#include "host/host_api.h"
#include "host/repl.h"
#include "host/new_project.h"

namespace {

// Writes straight to a file descriptor, flushing the C stdio streams first so
// that the libraries' own console output (wide stdio) keeps its place.
class FdBuf : public std::streambuf {
public:
    explicit FdBuf(int fd) : fd_(fd) { setp(buf_, buf_ + sizeof buf_); }
    ~FdBuf() override { sync(); }

protected:
    int overflow(int c) override {
        if (sync() != 0) return traits_type::eof();
        if (c != traits_type::eof()) {
            *pptr() = char(c);
            pbump(1);
        }
        return traits_type::not_eof(c);
    }
    int sync() override {
        std::fflush(stdout);
        std::fflush(stderr);
        const char* p = pbase();
        size_t n = size_t(pptr() - pbase());
        while (n) {
            ssize_t w = ::write(fd_, p, n);
            if (w <= 0) return -1;
            p += w;
            n -= size_t(w);
        }
        setp(buf_, buf_ + sizeof buf_);
        return 0;
    }

private:
    int fd_;
    char buf_[4096];
};

// A crash inside a class library names the method and the script line before
// the process dies (sanitizer builds keep their own reports).
#if !defined(__SANITIZE_ADDRESS__)
void OnFatalSignal(int sig) {
    const char* ctx = zelhost::CallContext();
    const char* head = "ncl: fatal signal ";
    char num[8];
    int n = 0;
    for (int v = sig; v > 0 && n < 7; v /= 10) num[n++] = char('0' + v % 10);
    ssize_t ignored = ::write(2, head, strlen(head));
    while (n > 0) ignored = ::write(2, &num[--n], 1);
    if (ctx && *ctx) {
        ignored = ::write(2, " in ", 4);
        ignored = ::write(2, ctx, strlen(ctx));
    }
    ignored = ::write(2, "\n", 1);
    (void)ignored;
    signal(sig, SIG_DFL);
    raise(sig);
}
#endif

void InstallCrashReport() {
#if !defined(__SANITIZE_ADDRESS__)
    for (int sig : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT}) signal(sig, OnFatalSignal);
#endif
}

const char kUsage[] =
    "usage:\n"
    "  ncl list LIB            the library record and its classes, one line each\n"
    "  ncl show LIB CLASS      one class: base, interfaces, elements, properties, methods, hooks\n"
    "  ncl check LIB           conformance check of the descriptors (non-zero exit on a finding)\n"
    "  ncl doc LIB             Markdown reference of every class\n"
    "  ncl run [--audit] SCRIPT|-   run a script; the first error stops it (exit 1)\n"
    "  ncl repl [LIB...]       statements one line at a time (also plain `ncl` on a terminal)\n"
    "  ncl new NAMESPACE DIR   a ready class-library project in DIR, built against the SDK\n"
    "  ncl help, ncl --help    this text\n"
    "  ncl --version           the version\n"
    "LIB is a path to a .ncl file, or a library name looked up in ZELCLS_PATHS,\n"
    "then in the folder of ncl's own libraries.\n";

// A command line ncl cannot follow: the usage on standard error, exit 2.
int Usage(std::ostream& err) {
    err << kUsage;
    return 2;
}

int Unknown(const std::string& what, const std::string& arg, std::ostream& err) {
    err << "ncl: unknown " << what << " '" << arg << "' (ncl help lists the commands and options)\n";
    return 2;
}

int RunFile(const std::string& script, const zelhost::RunOptions& opt, std::ostream& out, std::ostream& err) {
    if (script == "-") return zelhost::RunScript(std::cin, "-", opt, out, err);
    struct stat st {};
    if (stat(script.c_str(), &st) == 0 && S_ISDIR(st.st_mode)) {
        err << "ncl: cannot run " << script << ": it is a folder\n";
        return 2;
    }
    std::ifstream in(script);
    if (!in) {
        err << "ncl: cannot open " << script << ": " << std::strerror(errno) << "\n";
        return 2;
    }
    return zelhost::RunScript(in, script, opt, out, err);
}

// The directory of 系统.ncl is searched after those of ZELCLS_PATHS (or alone
// when it is unset), so that ncl and the libraries' own loaders find the
// libraries installed or built beside it.
void DefaultSearchPath() {
    Dl_info info{};
    if (!dladdr(reinterpret_cast<void*>(&ZelInitSysLib), &info) || !info.dli_fname) return;
    std::string p = info.dli_fname;
    size_t slash = p.rfind('/');
    std::string paths = slash == std::string::npos ? "." : p.substr(0, slash);
    const char* env = std::getenv("ZELCLS_PATHS");
    if (env && *env) paths = std::string(env) + "," + paths;
    setenv("ZELCLS_PATHS", paths.c_str(), 1);
}

zelhost::Library* Open(const std::string& arg, std::ostream& err) {
    std::string e;
    zelhost::Library* lib = nullptr;
    if (arg.find('/') == std::string::npos && access(arg.c_str(), F_OK) != 0) {
        std::string name = arg;
        if (name.size() > 4 && name.compare(name.size() - 4, 4, ".ncl") == 0) name.resize(name.size() - 4);
        lib = zelhost::LibraryForClass(zelhost::FromUtf8(name + ".x"), &e);
    } else {
        lib = zelhost::OpenLibrary(arg, &e);
    }
    if (!lib) err << "ncl: " << e << "\n";
    return lib;
}

}  // namespace

int main(int argc, char** argv) {
    FdBuf outBuf(1), errBuf(2);
    std::ostream out(&outBuf), err(&errBuf);
    DefaultSearchPath();
    InstallCrashReport();
    if (argc < 2) {
        if (isatty(0)) return ncl::RunRepl({}, out, err);
        return Usage(err);
    }
    std::string cmd = argv[1];
    int status = 0;
    if (cmd == "help" || cmd == "--help" || cmd == "-h") {
        out << kUsage;
    } else if (cmd == "run") {
        zelhost::RunOptions opt;
        std::string script;
        for (int i = 2; i < argc; ++i) {
            std::string a = argv[i];
            if (a == "--audit") opt.audit = true;
            else if (a.size() > 1 && a[0] == '-') return Unknown("option", a, err);
            else if (script.empty()) script = a;
            else return Usage(err);
        }
        if (script.empty()) return Usage(err);
        status = RunFile(script, opt, out, err);
    } else if (cmd == "repl") {
        std::vector<zelhost::Library*> libs;
        for (int i = 2; i < argc; ++i) {
            if (argv[i][0] == '-') return Unknown("option", argv[i], err);
            zelhost::Library* lib = Open(argv[i], err);
            if (!lib) return 2;
            libs.push_back(lib);
        }
        status = ncl::RunRepl(libs, out, err);
    } else if (cmd == "list" || cmd == "check" || cmd == "doc") {
        if (argc != 3) return Usage(err);
        zelhost::Library* lib = Open(argv[2], err);
        if (!lib) return 2;
        if (cmd == "list") status = zelhost::ListLibrary(lib, out, err);
        else if (cmd == "check") status = zelhost::CheckLibrary(lib, out, err);
        else status = zelhost::DocLibrary(lib, out, err);
    } else if (cmd == "show") {
        if (argc != 4) return Usage(err);
        zelhost::Library* lib = Open(argv[2], err);
        if (!lib) return 2;
        status = zelhost::ShowClass(lib, zelhost::FromUtf8(argv[3]), out, err);
    } else if (cmd == "new") {
        if (argc != 4) return Usage(err);
        status = ncl::NewProject(argv[2], argv[3], out, err);
    } else if (cmd == "--version") {
        out << "ncl " << ZEL_VERSION_STRING << "\n";
    } else {
        return Unknown(cmd[0] == '-' ? "option" : "command", cmd, err);
    }
    out.flush();
    err.flush();
    return status;
}
