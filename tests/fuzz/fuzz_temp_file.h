// One scratch file per fuzzing process, rewritten with each input and removed
// at exit.
#pragma once

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "fuzz_input.h"

class FuzzTempFile {
public:
    FuzzTempFile() {
        const char* dir = std::getenv("TMPDIR");
        std::string pattern = std::string(dir && *dir ? dir : "/tmp") + "/zel_fuzz_XXXXXX";
        int fd = mkstemp(pattern.data());
        FUZZ_CHECK(fd >= 0);
        close(fd);
        m_path = pattern;
        m_wide.assign(m_path.begin(), m_path.end());  // the pattern is ASCII
    }
    ~FuzzTempFile() { std::remove(m_path.c_str()); }

    void Write(const std::string& bytes) {
        FILE* f = std::fopen(m_path.c_str(), "wb");
        FUZZ_CHECK(f);
        FUZZ_CHECK(std::fwrite(bytes.data(), 1, bytes.size(), f) == bytes.size());
        std::fclose(f);
    }
    const wchar_t* Path() const { return m_wide.c_str(); }

private:
    std::string m_path;
    std::wstring m_wide;
};
