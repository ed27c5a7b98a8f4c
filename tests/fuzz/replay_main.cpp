// Runs a fuzz target over files and directories of inputs, without libFuzzer:
// the corpus replay of the normal test suite. Each input is one call of the
// target; the program fails on the first input that aborts or trips a sanitizer.
#include <algorithm>
#include <cstdint>
#include <memory>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace fs = std::filesystem;

static void Replay(const fs::path& file, int& count) {
    std::ifstream in(file, std::ios::binary);
    std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    // A block of exactly the input's size (never null), so a read past it is caught.
    std::unique_ptr<uint8_t[]> input(new uint8_t[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), input.get());
    LLVMFuzzerTestOneInput(input.get(), bytes.size());
    ++count;
}

int main(int argc, char** argv) {
    int count = 0;
    for (int i = 1; i < argc; ++i) {
        fs::path path(argv[i]);
        if (fs::is_directory(path)) {
            std::vector<fs::path> files;
            for (const auto& entry : fs::directory_iterator(path))
                if (entry.is_regular_file()) files.push_back(entry.path());
            std::sort(files.begin(), files.end());
            for (const auto& file : files) Replay(file, count);
        } else if (fs::is_regular_file(path)) {
            Replay(path, count);
        } else {
            std::fprintf(stderr, "replay: no such input %s\n", argv[i]);
            return 2;
        }
    }
    if (count == 0) {
        std::fprintf(stderr, "replay: no inputs\n");
        return 2;
    }
    std::printf("replayed %d inputs\n", count);
    return 0;
}
