// Runs a piece of a test in a forked child whose standard input, output and
// error are files: for code that reads the console, writes it wide, or ends
// the process. The parent's own streams stay as they were.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

struct ChildResult {
    int status = -1;  // the exit status, or -1 when the child did not exit
    std::string out, err;
};

template <typename Body>
ChildResult RunInChild(Body body, const std::string& input = "") {
    FILE* in = std::tmpfile();
    FILE* out = std::tmpfile();
    FILE* err = std::tmpfile();
    std::fwrite(input.data(), 1, input.size(), in);
    std::rewind(in);
    std::fflush(nullptr);
    pid_t child = fork();
    if (child == 0) {
        dup2(fileno(in), STDIN_FILENO);
        dup2(fileno(out), STDOUT_FILENO);
        dup2(fileno(err), STDERR_FILENO);
        // Reopening also drops an orientation the streams already had.
        if (!std::freopen(nullptr, "r", stdin) || !std::freopen(nullptr, "w", stdout) ||
            !std::freopen(nullptr, "w", stderr))
            _exit(100);
        // exit, not _exit: coverage data is written at exit.
        std::exit(body());
    }
    ChildResult result;
    int status = 0;
    if (waitpid(child, &status, 0) == child && WIFEXITED(status)) result.status = WEXITSTATUS(status);
    for (auto [file, text] : {std::pair{out, &result.out}, std::pair{err, &result.err}}) {
        std::rewind(file);
        char chunk[256];
        for (size_t n; (n = std::fread(chunk, 1, sizeof chunk, file)) > 0;) text->append(chunk, n);
        std::fclose(file);
    }
    std::fclose(in);
    return result;
}
