#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "runtime/memory.h"
#include "support/minimem.h"

namespace {

// Reaches the fields, to build states the operations do not produce.
struct ProbeMem : CMiniMem {
    void ForceSize(int n) { m_size = n; }
};

struct ProbeAlign : CAlignMem {
    int Offset(const void* field) const {
        return static_cast<int>(static_cast<const char*>(field) - reinterpret_cast<const char*>(this));
    }
    std::vector<int> Offsets() const {
        return {Offset(&m_data), Offset(&m_capacity), Offset(&m_size), Offset(&m_granule)};
    }
};

std::string Bytes(const CMiniMem& m) {
    return std::string(reinterpret_cast<const char*>(m.GetData()), m.GetSize());
}

void Set(CMiniMem& m, const char* text) {
    m.Free();
    m.Append(const_cast<char*>(text), static_cast<int>(std::strlen(text)));
}

struct FailGuard {
    explicit FailGuard(int n) { zel::FailAllocationAfter(n); }
    ~FailGuard() { zel::FailAllocationAfter(0); }
};

class TempDir {
public:
    TempDir() {
        char pattern[] = "/tmp/minimem_test_XXXXXX";
        m_path = mkdtemp(pattern);
    }
    ~TempDir() { std::filesystem::remove_all(m_path); }
    std::wstring File(const char* name) const {
        std::string path = m_path + "/" + name;
        return std::wstring(path.begin(), path.end());
    }
    std::string Narrow(const char* name) const { return m_path + "/" + name; }

private:
    std::string m_path;
};

}  // namespace

TEST(MiniMem, LayoutAndVirtualSlots) {
    ProbeAlign probe;
    EXPECT_EQ(probe.Offsets(), (std::vector<int>{4, 8, 12, 16}));  // after the vptr
    // Slots 0 and 1 are the destructors; slot 2 is GetMemAlignSize.
    CAlignMem mem(77);
    using AlignFn = int (*)(CMiniMem*);
    AlignFn* slots;
    std::memcpy(&slots, &mem, sizeof slots);
    AlignFn slot2 = slots[2];
    EXPECT_EQ(slot2(&mem), 77);
}

TEST(MiniMem, CapacityRoundsPastTheSizeByTheGranule) {
    CMiniMem m;
    EXPECT_EQ(m.Alloc(0), nullptr);
    EXPECT_EQ(m.GetCapacity(), 0);
    EXPECT_NE(m.Alloc(1), nullptr);
    EXPECT_EQ(m.GetCapacity(), 32);
    EXPECT_EQ(m.GetSize(), 1);
    CMiniMem exact, over;
    exact.Alloc(32);
    over.Alloc(33);
    EXPECT_EQ(exact.GetCapacity(), 64);
    EXPECT_EQ(over.GetCapacity(), 64);

    CAlignMem big(1024);
    big.Alloc(1);
    EXPECT_EQ(big.GetMemAlignSize(), 1024);
    EXPECT_EQ(big.GetCapacity(), 1024);
    EXPECT_EQ(CAlignMem(0).GetMemAlignSize(), 32);  // a zero granule would divide by zero
}

TEST(MiniMem, KeepRuleShrinksOnlyPastOneGranuleOfSlack) {
    CMiniMem m;
    m.Alloc(40);
    ASSERT_EQ(m.GetCapacity(), 64);
    unsigned char* block = m.GetData();
    EXPECT_EQ(m.Realloc(32), block);
    EXPECT_EQ(m.GetCapacity(), 64);
    m.Realloc(31);
    EXPECT_EQ(m.GetCapacity(), 32);
    EXPECT_EQ(m.GetSize(), 31);

    // Growing to exactly the capacity keeps the block as it is.
    m.Realloc(32);
    EXPECT_EQ(m.GetCapacity(), 32);
    EXPECT_EQ(m.GetSize(), 32);

    EXPECT_EQ(m.Realloc(0), nullptr);
    EXPECT_EQ(m.GetData(), nullptr);
    EXPECT_EQ(m.GetCapacity(), 0);
    EXPECT_EQ(m.Realloc(-1), nullptr);  // negative sizes change nothing
    EXPECT_EQ(m.GetSize(), 0);
}

TEST(MiniMem, DetachHandsOverOnlyContents) {
    ProbeMem m;
    m.Alloc(4);
    m.ForceSize(0);
    EXPECT_EQ(m.Detach(), nullptr);
    EXPECT_NE(m.GetData(), nullptr);  // the empty block stays with the buffer
    m.ForceSize(4);
    unsigned char* block = m.Detach();
    EXPECT_NE(block, nullptr);
    EXPECT_EQ(m.GetData(), nullptr);
    EXPECT_EQ(m.GetCapacity(), 0);
    zel_free(block);
}

TEST(MiniMem, XchgSwapsContentsButNotTheGranule) {
    CAlignMem a(1024);
    CMiniMem b;
    Set(a, "abc");
    Set(b, "xy");
    a.xchg(b);
    EXPECT_EQ(Bytes(a), "xy");
    EXPECT_EQ(Bytes(b), "abc");
    EXPECT_EQ(b.GetCapacity(), 1024);
    EXPECT_EQ(a.GetMemAlignSize(), 1024);
}

TEST(MiniMem, AppendAndInsert) {
    CMiniMem m, other;
    EXPECT_EQ(m.Append(nullptr, 0), 1);
    Set(m, "ad");
    EXPECT_EQ(m.Insert(1, const_cast<char*>("bc"), 2), 1);
    EXPECT_EQ(Bytes(m), "abcd");
    m.Insert(0, nullptr, 1);
    EXPECT_EQ(Bytes(m), std::string("\0abcd", 5));
    EXPECT_EQ(m.Append(other), 1);
    Set(other, "ef");
    m.Append(other);
    EXPECT_EQ(Bytes(m), std::string("\0abcdef", 7));

    // The source may lie inside the buffer itself.
    Set(m, "abc");
    m.Append(m);
    EXPECT_EQ(Bytes(m), "abcabc");
    m.Insert(1, m.GetData() + 3, 3);
    EXPECT_EQ(Bytes(m), "aabcbcabc");

    // Past the end, the buffer grows to pos + n.
    Set(m, "ab");
    EXPECT_EQ(m.Insert(5, const_cast<char*>("xy"), 2), 1);
    ASSERT_EQ(m.GetSize(), 7);
    EXPECT_EQ(Bytes(m).substr(0, 2), "ab");
    EXPECT_EQ(Bytes(m).substr(5), "xy");
    EXPECT_EQ(m.Insert(-1, const_cast<char*>("z"), 1), 0);
}

TEST(MiniMem, Remove) {
    CMiniMem m;
    Set(m, "abcdef");
    EXPECT_EQ(m.Remove(1, 2), 1);
    EXPECT_EQ(Bytes(m), "adef");
    EXPECT_EQ(m.Remove(2, 100), 1);  // clipped at the end
    EXPECT_EQ(Bytes(m), "ad");
    EXPECT_EQ(m.Remove(2, 1), 0);
    EXPECT_EQ(m.Remove(1, 0), 1);
    EXPECT_EQ(m.Remove(-1, 1), 1);
    EXPECT_EQ(Bytes(m), "a");
    EXPECT_EQ(m.Remove(-1, 5), 1);
    EXPECT_EQ(m.GetData(), nullptr);
    EXPECT_EQ(m.Remove(0, 1), 0);

    Set(m, "abc");
    EXPECT_EQ(m.Remove(0, 3), 1);
    EXPECT_EQ(m.GetData(), nullptr);
}

TEST(MiniMem, Replace) {
    CMiniMem m;
    auto src = [](const char* s) { return reinterpret_cast<unsigned char*>(const_cast<char*>(s)); };
    Set(m, "abcdef");
    m.Replace(1, 2, src("XYZW"), 4);
    EXPECT_EQ(Bytes(m), "aXYZWdef");
    m.Replace(1, 4, src("q"), 1);
    EXPECT_EQ(Bytes(m), "aqdef");
    m.Replace(1, 0, src("--"), 2);  // n = 0 inserts
    EXPECT_EQ(Bytes(m), "a--qdef");
    m.Replace(1, 2, src(""), 0);  // m = 0 removes
    EXPECT_EQ(Bytes(m), "aqdef");
    m.Replace(3, 100, src("XY"), 2);  // only up to the end
    EXPECT_EQ(Bytes(m), "aqdXY");
    m.Replace(0, 2, nullptr, 2);
    EXPECT_EQ(Bytes(m), std::string("\0\0dXY", 5));
    m.Replace(9, 1, src("!"), 1);  // pos past the end inserts there
    EXPECT_EQ(m.GetSize(), 10);
    EXPECT_EQ(m.Replace(-1, 1, src("!"), 1), 0);
}

TEST(MiniMem, TypedAddersStoreInHostOrder) {
    CMiniMem m;
    EXPECT_EQ(m.AddByte(0x11), 1);  // no room yet: the result of Append
    EXPECT_EQ(m.AddByte(0x22), 2);  // in place: the new size
    EXPECT_EQ(m.AddWord(0x3344), 4);
    EXPECT_EQ(m.AddDWord(0x55667788u), 8);
    m.AddInt(-1);
    m.AddBool(7);  // stored as given
    EXPECT_EQ(m.AddChar(L'中'), 20);
    m.AddDouble(1.5);
    ASSERT_EQ(m.GetSize(), 28);
    const unsigned char expected[] = {0x11, 0x22, 0x44, 0x33, 0x88, 0x77, 0x66, 0x55, 0xFF, 0xFF,
                                      0xFF, 0xFF, 7,    0,    0,    0,    0x2D, 0x4E, 0,    0};
    EXPECT_EQ(std::memcmp(m.GetData(), expected, sizeof expected), 0);
    double d;
    std::memcpy(&d, m.GetData() + 20, 8);
    EXPECT_EQ(d, 1.5);

    for (int i = 0; i < 100; ++i) m.AddByte(static_cast<unsigned char>(i));
    EXPECT_EQ(m.GetSize(), 128);
    EXPECT_EQ(m.GetData()[127], 99);
}

TEST(MiniMem, TextAndBinAdders) {
    CMiniMem m;
    m.AddText(const_cast<wchar_t*>(L""));
    m.AddText(nullptr);
    EXPECT_EQ(m.GetSize(), 0);
    m.AddStr(const_cast<wchar_t*>(L""));
    EXPECT_EQ(m.GetSize(), 4);
    m.AddStr(nullptr);
    EXPECT_EQ(m.GetSize(), 8);
    m.AddText(const_cast<wchar_t*>(L"ab"));
    m.AddStr(const_cast<wchar_t*>(L"c"));
    ASSERT_EQ(m.GetSize(), 24);
    const wchar_t expected[] = {0, 0, L'a', L'b', L'c', 0};
    EXPECT_EQ(std::memcmp(m.GetData(), expected, sizeof expected), 0);

    CMiniMem bin;
    int words[4] = {0, 1, 3, 0};
    std::memcpy(&words[3], "xyz", 3);
    bin.AddBin(reinterpret_cast<unsigned char*>(words));
    bin.AddBin(nullptr);
    EXPECT_EQ(Bytes(bin), "xyz");

    bin.AddSpecNumBytes(3, 0x141, 2, 3);
    EXPECT_EQ(Bytes(bin), "xyzA\2\3");
    bin.AddSpecNumBytes(-2);
    EXPECT_EQ(Bytes(bin), "xyzA");
}

TEST(MiniMem, ReadFromFile) {
    TempDir dir;
    CMiniMem m;
    Set(m, "old");
    EXPECT_EQ(m.ReadFromFile(const_cast<wchar_t*>(dir.File("missing").c_str()), -1), -1);
    EXPECT_EQ(m.GetData(), nullptr);

    std::ofstream(dir.Narrow("empty")).close();
    Set(m, "old");
    EXPECT_EQ(m.ReadFromFile(const_cast<wchar_t*>(dir.File("empty").c_str()), -1), 0);
    EXPECT_EQ(m.GetData(), nullptr);

    std::ofstream(dir.Narrow("data")) << "hello";
    std::wstring path = dir.File("data");
    EXPECT_EQ(m.ReadFromFile(const_cast<wchar_t*>(path.c_str()), -1), 5);
    EXPECT_EQ(Bytes(m), "hello");
    EXPECT_EQ(m.ReadFromFile(const_cast<wchar_t*>(path.c_str()), 3), 3);
    EXPECT_EQ(Bytes(m), "hel");
    EXPECT_EQ(m.ReadFromFile(const_cast<wchar_t*>(path.c_str()), 50), 5);  // fewer than asked
    EXPECT_EQ(Bytes(m), "hello");
    EXPECT_EQ(m.ReadFromFile(nullptr, -1), -1);
}

TEST(MiniMem, WriteIntoFileAndElfFile) {
    TempDir dir;
    CMiniMem m, back;
    Set(m, "abcdef");
    std::wstring plain = dir.File("plain"), elf = dir.File("elf");
    EXPECT_EQ(m.WriteIntoFile(const_cast<wchar_t*>(plain.c_str()), 4), 1);
    back.ReadFromFile(const_cast<wchar_t*>(plain.c_str()), -1);
    EXPECT_EQ(Bytes(back), "abcd");
    EXPECT_EQ(m.WriteIntoELFFile(const_cast<wchar_t*>(elf.c_str()), -1), 1);
    back.ReadFromFile(const_cast<wchar_t*>(elf.c_str()), -1);
    EXPECT_EQ(Bytes(back), "abcdef");

    struct stat info;
    ASSERT_EQ(stat(dir.Narrow("elf").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0700u);
    mode_t mask = umask(0);
    umask(mask);
    ASSERT_EQ(stat(dir.Narrow("plain").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0666u & ~mask);

    CMiniMem empty;
    EXPECT_EQ(empty.WriteIntoFile(const_cast<wchar_t*>(plain.c_str()), -1), 1);
    EXPECT_EQ(std::filesystem::file_size(dir.Narrow("plain")), 0u);
    std::wstring nowhere = dir.File("no/such/dir");
    EXPECT_EQ(m.WriteIntoFile(const_cast<wchar_t*>(nowhere.c_str()), -1), 0);
    EXPECT_EQ(m.WriteIntoELFFile(const_cast<wchar_t*>(nowhere.c_str()), -1), 0);
}

TEST(MiniMem, FailedAllocationLeavesTheBufferAsItWas) {
    CMiniMem m;
    Set(m, "0123456789012345678901234567890");  // 31 bytes in a 32-byte block
    unsigned char* data = m.GetData();
    auto unchanged = [&] {
        EXPECT_EQ(m.GetData(), data);
        EXPECT_EQ(m.GetCapacity(), 32);
        EXPECT_EQ(Bytes(m), "0123456789012345678901234567890");
    };
    FailGuard fail(1);
    EXPECT_EQ(m.Append(const_cast<char*>("abc"), 3), 0);
    unchanged();
    zel::FailAllocationAfter(1);
    EXPECT_EQ(m.Insert(3, const_cast<char*>("abc"), 3), 0);
    unchanged();
    zel::FailAllocationAfter(1);
    EXPECT_EQ(m.Replace(3, 1, reinterpret_cast<unsigned char*>(const_cast<char*>("abc")), 3), 0);
    unchanged();
    zel::FailAllocationAfter(1);
    EXPECT_EQ(m.Realloc(100), nullptr);
    unchanged();
    zel::FailAllocationAfter(1);
    m.AddDWord(1);
    unchanged();
    zel::FailAllocationAfter(1);
    EXPECT_EQ(m.AddSpecNumBytes(3, 1, 2, 3), 0);
    unchanged();

    CMiniMem fresh;
    zel::FailAllocationAfter(1);
    EXPECT_EQ(fresh.Alloc(10), nullptr);
    EXPECT_EQ(fresh.GetSize(), 0);
    EXPECT_EQ(fresh.GetCapacity(), 0);
}
