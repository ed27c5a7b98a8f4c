#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <zel/memory.h>
#include <zel/minimem.h>

namespace {

// Reaches the fields, to build states the operations do not produce.
struct Probe : CMiniMem {
    void ForceSize(int n) { m_size = n; }
};

std::string Bytes(const CMiniMem& m) { return std::string(reinterpret_cast<const char*>(m.GetData()), m.GetSize()); }
// "capacity/size", after resizing to n when one is given.
std::string Shape(const CMiniMem& m) { return std::to_string(m.GetCapacity()) + "/" + std::to_string(m.GetSize()); }
std::string Shape(CMiniMem& m, int n) { m.Realloc(n); return Shape(m); }
// An operation's result and the contents after it, as "result:bytes".
std::string After(CMiniMem& m, int result) { return std::to_string(result) + ":" + Bytes(m); }
unsigned char* U(const char* s) { return reinterpret_cast<unsigned char*>(const_cast<char*>(s)); }

void Set(CMiniMem& m, const char* text) { m.Free(); m.Append(const_cast<char*>(text), int(std::strlen(text))); }

}  // namespace

TEST(MiniMem, CapacityRoundsPastTheSizeAndShrinksPastOneGranuleOfSlack) {
    CMiniMem m, exact, over;
    CAlignMem big(1024);
    EXPECT_TRUE(!m.Alloc(0) && Shape(m) == "0/0");
    m.Alloc(1);
    exact.Alloc(32);
    over.Alloc(33);
    big.Alloc(1);
    EXPECT_EQ(Shape(m) + " " + Shape(exact) + " " + Shape(over) + " " + Shape(big), "32/1 64/32 64/33 1024/1");
    EXPECT_EQ(CAlignMem(0).GetMemAlignSize(), 32);  // a zero granule would divide by zero

    unsigned char* block = over.GetData();
    EXPECT_EQ(over.Realloc(32), block);  // within one granule of slack: kept
    EXPECT_EQ(Shape(over), "64/32");
    EXPECT_EQ(Shape(over, 31), "32/31");
    EXPECT_EQ(Shape(over, 32), "32/32");  // growing to exactly the capacity keeps the block
    EXPECT_TRUE(!over.Realloc(0) && !over.Realloc(-1));  // negative sizes change nothing
    EXPECT_EQ(Shape(over), "0/0");
}

TEST(MiniMem, DetachAndXchg) {
    Probe m;
    m.Alloc(4);
    m.ForceSize(0);
    EXPECT_TRUE(!m.Detach() && m.GetData());  // the empty block stays with the buffer
    m.ForceSize(4);
    zel_free(m.Detach());  // a block still owned by the buffer would be freed twice
    EXPECT_TRUE(!m.GetData() && Shape(m) == "0/0");

    CAlignMem a(1024);
    CMiniMem b;
    Set(a, "abc");
    Set(b, "xy");
    a.xchg(b);  // contents swap, the granule does not
    EXPECT_EQ(Bytes(a) + Bytes(b) + Shape(b), "xyabc1024/3");
    EXPECT_EQ(a.GetMemAlignSize(), 1024);
}

TEST(MiniMem, AppendAndInsert) {
    CMiniMem m, empty;
    EXPECT_EQ(After(m, m.Append(nullptr, 0)), "1:");
    EXPECT_EQ(After(m, m.Append(empty)), "1:");
    Set(m, "ad");
    EXPECT_EQ(After(m, m.Insert(1, const_cast<char*>("bc"), 2)), "1:abcd");
    EXPECT_EQ(After(m, m.Insert(0, nullptr, 1)), std::string("1:\0abcd", 7));
    Set(m, "abc");  // the source may lie inside the buffer itself
    EXPECT_EQ(After(m, m.Append(m)), "1:abcabc");
    EXPECT_EQ(After(m, m.Insert(1, m.GetData() + 3, 3)), "1:aabcbcabc");
    Set(m, "ab");  // past the end, the buffer grows to pos + n
    EXPECT_EQ(m.Insert(5, const_cast<char*>("xy"), 2), 1);
    ASSERT_EQ(m.GetSize(), 7);
    EXPECT_EQ(Bytes(m).substr(0, 2) + Bytes(m).substr(5), "abxy");
    EXPECT_EQ(m.Insert(-1, const_cast<char*>("z"), 1), 0);
    EXPECT_EQ(m.GetSize(), 7);
}

TEST(MiniMem, RemoveAndReplace) {
    CMiniMem m;
    Set(m, "abcdef");
    EXPECT_EQ(After(m, m.Remove(1, 2)), "1:adef");
    EXPECT_EQ(After(m, m.Remove(2, 100)), "1:ad");  // clipped at the end
    EXPECT_EQ(After(m, m.Remove(2, 1)), "0:ad");
    EXPECT_EQ(After(m, m.Remove(1, 0)), "1:ad");
    EXPECT_EQ(After(m, m.Remove(-1, 1)), "1:a");
    EXPECT_TRUE(m.Remove(-1, 5) && !m.GetData());
    EXPECT_EQ(m.Remove(0, 1), 0);
    Set(m, "abc");
    EXPECT_TRUE(m.Remove(0, 3) && !m.GetData());

    Set(m, "abcdef");
    EXPECT_EQ(After(m, m.Replace(1, 2, U("XYZW"), 4)), "1:aXYZWdef");
    EXPECT_EQ(After(m, m.Replace(1, 4, U("q"), 1)), "1:aqdef");
    EXPECT_EQ(After(m, m.Replace(1, 0, U("--"), 2)), "1:a--qdef");  // n = 0 inserts
    EXPECT_EQ(After(m, m.Replace(1, 2, U(""), 0)), "1:aqdef");      // m = 0 removes
    EXPECT_EQ(After(m, m.Replace(3, 100, U("XY"), 2)), "1:aqdXY");  // only up to the end
    EXPECT_EQ(After(m, m.Replace(0, 2, nullptr, 2)), std::string("1:\0\0dXY", 7));
    EXPECT_EQ(m.Replace(9, 1, U("!"), 1), 1);  // pos past the end inserts there
    EXPECT_EQ(m.Replace(-1, 1, U("!"), 1), 0);
    EXPECT_EQ(m.GetSize(), 10);
}

TEST(MiniMem, Adders) {
    CMiniMem m;
    EXPECT_EQ(m.AddByte(0x11), 1);  // no room yet: the result of Append
    EXPECT_EQ(m.AddByte(0x22), 2);  // in place: the new size
    EXPECT_EQ(m.AddWord(0x3344), 4);
    EXPECT_EQ(m.AddDWord(0x55667788u), 8);
    m.AddInt(-1);
    m.AddBool(7);  // stored as given
    EXPECT_EQ(m.AddChar(L'中'), 20);
    m.AddDouble(1.5);
    const unsigned char expected[] = {0x11, 0x22, 0x44, 0x33, 0x88, 0x77, 0x66, 0x55, 0xFF, 0xFF, 0xFF,
                                      0xFF, 7, 0, 0, 0, 0x2D, 0x4E, 0, 0, 0, 0, 0, 0, 0, 0, 0xF8, 0x3F};
    EXPECT_EQ(Bytes(m), std::string(reinterpret_cast<const char*>(expected), sizeof expected));

    CMiniMem text;  // AddText never adds a terminator; AddStr always does
    for (const wchar_t* s : {L"", static_cast<const wchar_t*>(nullptr)}) text.AddText(const_cast<wchar_t*>(s));
    EXPECT_EQ(text.GetSize(), 0);
    for (const wchar_t* s : {L"", static_cast<const wchar_t*>(nullptr)}) text.AddStr(const_cast<wchar_t*>(s));
    text.AddText(const_cast<wchar_t*>(L"ab"));
    text.AddStr(const_cast<wchar_t*>(L"c"));
    const wchar_t units[] = {0, 0, L'a', L'b', L'c', 0};
    EXPECT_EQ(Bytes(text), std::string(reinterpret_cast<const char*>(units), sizeof units));

    int bin[4] = {0, 1, 3, 0x7A7978};  // a byte set of 3 bytes, "xyz"
    m.Free();
    m.AddBin(reinterpret_cast<unsigned char*>(bin));
    m.AddBin(nullptr);
    m.AddSpecNumBytes(3, 0x141, 2, 3);
    m.AddSpecNumBytes(-1);
    EXPECT_EQ(Bytes(m), "xyzA\2");
}

TEST(MiniMem, FilesReadAndWritten) {
    std::string base = testing::TempDir() + "minimem_" + std::to_string(getpid());
    std::string plainPath = base + "_plain", elfPath = base + "_elf";
    auto wide = [](const std::string& s) { return std::wstring(s.begin(), s.end()); };
    std::wstring plain = wide(plainPath), elf = wide(elfPath), nowhere = wide(base + "_none/x");
    CMiniMem m, back, empty;
    Set(m, "abcdef");
    EXPECT_EQ(m.WriteIntoFile(plain.data(), 4), 1);
    EXPECT_EQ(After(back, back.ReadFromFile(plain.data(), -1)), "4:abcd");
    EXPECT_EQ(After(back, back.ReadFromFile(plain.data(), 3)), "3:abc");
    EXPECT_EQ(After(back, back.ReadFromFile(plain.data(), 50)), "4:abcd");  // fewer than asked
    EXPECT_EQ(After(back, back.ReadFromFile(plain.data(), 0)), "0:");
    EXPECT_EQ(m.WriteIntoELFFile(elf.data(), -1), 1);
    EXPECT_EQ(After(back, back.ReadFromFile(elf.data(), -1)), "6:abcdef");

    struct stat info;
    ASSERT_EQ(stat(elfPath.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0700u);

    EXPECT_EQ(empty.WriteIntoFile(plain.data(), -1), 1);  // truncates
    EXPECT_TRUE(back.ReadFromFile(plain.data(), -1) == 0 && !back.GetData());  // empty file: empty buffer
    Set(back, "old");
    EXPECT_TRUE(back.ReadFromFile(nowhere.data(), -1) == -1 && !back.GetData());  // missing file: empty too
    EXPECT_EQ(back.ReadFromFile(nullptr, -1), -1);
    EXPECT_FALSE(m.WriteIntoFile(nowhere.data(), -1) || m.WriteIntoELFFile(nowhere.data(), -1) || m.WriteIntoFile(nullptr, -1));
    std::filesystem::remove(plainPath);
    std::filesystem::remove(elfPath);
}

TEST(MiniMem, FailedAllocationLeavesTheBufferAsItWas) {
    const char* text = "0123456789012345678901234567890";  // 31 bytes in a 32-byte block
    CMiniMem m, fresh;
    Set(m, text);
    unsigned char* data = m.GetData();
    std::vector<std::function<int()>> edits = {
        [&] { return m.Append(const_cast<char*>("abc"), 3); },
        [&] { return m.Insert(3, const_cast<char*>("abc"), 3); },
        [&] { return m.Replace(3, 1, U("abc"), 3); },
        [&] { return m.Realloc(100) != nullptr; },
        [&] { return m.AddSpecNumBytes(3, 1, 2, 3); },
        [&] { return m.AddDWord(1); },
        [&] { return fresh.Alloc(10) != nullptr; },
    };
    for (auto& edit : edits) {
        zel::FailAllocationAfter(1);
        EXPECT_EQ(edit(), 0);
        zel::FailAllocationAfter(0);
        EXPECT_EQ(m.GetData(), data);
        EXPECT_EQ(Shape(m) + Bytes(m), std::string("32/31") + text);
    }
    EXPECT_EQ(Shape(fresh), "0/0");
}
