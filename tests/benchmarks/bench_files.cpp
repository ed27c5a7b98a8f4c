// File work against the page cache: telling the type of a 64 MiB file
// (ASCII, and mixed Chinese and Latin UTF-8) against read() of the same
// file, and reading a 256 MiB file whole against read() into a fresh buffer.
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "common/test_object.h"
#include "io/binary_file_methods.h"
#include <zel/memory.h>
#include <zel/services.h>

#include "pairs.h"


namespace {

std::string g_dir;

std::string Make(const std::string& name, const std::string& unit, size_t bytes) {
    std::string path = g_dir + "/" + name, block;
    while (block.size() < (1 << 20)) block += unit;
    block.resize(1 << 20);
    int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    for (size_t done = 0; fd >= 0 && done < bytes; done += block.size())
        if (write(fd, block.data(), block.size()) < 0) break;
    if (fd >= 0) close(fd);
    return path;
}

// read() of the whole file, in pieces into one buffer or at once into a
// fresh block.
void ReadPieces(const std::string& path) {
    static std::vector<char> piece(128 << 10);
    int fd = open(path.c_str(), O_RDONLY);
    while (read(fd, piece.data(), piece.size()) > 0) {
    }
    close(fd);
}

void ReadFresh(const std::string& path, size_t bytes) {
    char* block = static_cast<char*>(std::malloc(bytes));
    int fd = open(path.c_str(), O_RDONLY);
    for (size_t done = 0; done < bytes;) {
        ssize_t got = read(fd, block + done, bytes - done);
        if (got <= 0) break;
        done += size_t(got);
    }
    close(fd);
    benchmark::DoNotOptimize(block);
    std::free(block);
}

void BM_Files(benchmark::State& state) {
    char pattern[] = "/tmp/zel_bench_XXXXXX";
    g_dir = mkdtemp(pattern) ? pattern : "/tmp";
    const size_t k64 = 64 << 20, k256 = 256 << 20;
    std::string ascii = Make("ascii", "The quick brown fox jumps over the lazy dog 0123456789.\n", k64);
    std::string mixed = Make("mixed", "类库 Tools 工具: 文本、日期和颜色 text, dates & colours — ü é.\n", k64);
    std::string big = Make("big", "0123456789abcdef", k256);
    std::wstring wascii(ascii.begin(), ascii.end()), wmixed(mixed.begin(), mixed.end()), wbig(big.begin(), big.end());
    unsigned char* asciiName = zel::NewText(wascii.c_str());
    unsigned char* mixedName = zel::NewText(wmixed.c_str());
    unsigned char* bigName = zel::NewText(wbig.c_str());

    TestObject binaryFile(&g_info_BinaryFile, BinaryFile_Init, BinaryFile_Free);
    ZelObject* obj = binaryFile;

    for (auto _ : state) {
        bench::Compare(15, "取文件类型, 64 MiB ASCII", 2.0, [&] { ReadPieces(ascii); },
                       [&] { benchmark::DoNotOptimize(BinaryFile_GetFileType(obj, asciiName)); },
                       "vs read() of the file");
        bench::Compare(15, "取文件类型, 64 MiB mixed Chinese/Latin", 4.0, [&] { ReadPieces(mixed); },
                       [&] { benchmark::DoNotOptimize(BinaryFile_GetFileType(obj, mixedName)); },
                       "vs read() of the file");
        bench::Compare(9, "读入文件, 256 MiB", 1.1, [&] { ReadFresh(big, k256); },
                       [&] { zel_free(BinaryFile_ReadFile(obj, bigName, 1)); }, "vs read() into a fresh buffer");
    }
    zel_free(asciiName);
    zel_free(mixedName);
    zel_free(bigName);
    unlink(ascii.c_str());
    unlink(mixed.c_str());
    unlink(big.c_str());
    rmdir(g_dir.c_str());
}

}  // namespace

BENCHMARK(BM_Files)->Iterations(1)->Unit(benchmark::kMillisecond);

BENCH_MAIN("Files")
