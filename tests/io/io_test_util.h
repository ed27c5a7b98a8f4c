// Shared helpers of the io tests: a private temporary directory (and a
// fixture around one), whole-file access, descriptor counting, and an owner
// for the values handed back.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <zel/memory.h>

class TempDir {
public:
    TempDir() { char pattern[] = "/tmp/zel_io_XXXXXX"; m_path = mkdtemp(pattern) ? pattern : ""; }
    ~TempDir() { if (!m_path.empty()) std::filesystem::remove_all(m_path); }
    std::string Path(const std::string& name) const { return m_path + "/" + name; }
    std::wstring WPath(const std::string& name) const {
        std::string p = Path(name);
        return std::wstring(p.begin(), p.end());
    }

private:
    std::string m_path;
};

inline void WriteFileBytes(const std::string& path, const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; }

inline std::string ReadFileBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// A test with its own temporary directory.
class TempDirTest : public ::testing::Test {
protected:
    TempDir dir;
    // Writes `bytes` to the file `name` of the directory; gives its wide path.
    std::wstring Make(const std::string& name, const std::string& bytes) {
        WriteFileBytes(dir.Path(name), bytes);
        return dir.WPath(name);
    }
};

inline int OpenDescriptors() {
    auto fds = std::filesystem::directory_iterator("/proc/self/fd");
    return int(std::distance(begin(fds), end(fds)));
}

// Owns a text or byte set made by the library (zel_free leaves the shared
// empty constants alone).
struct Owned {
    unsigned char* h;
    explicit Owned(unsigned char* handle) : h(handle) {}
    ~Owned() { zel_free(h); }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    int binLength() const { return h ? reinterpret_cast<int*>(h)[2] : -1; }
    std::string bytes() const { return h ? std::string(reinterpret_cast<char*>(h + 12), binLength()) : "<null>"; }
    std::wstring text() const { return h ? std::wstring(reinterpret_cast<wchar_t*>(h + 8)) : L"<null>"; }
};

inline unsigned char* MakeBin(const std::string& bytes) { return MCloneZelBin(const_cast<char*>(bytes.data()), int(bytes.size())); }
