// The byte buffer: capacity by granules, edits (from its own bytes too),
// the little-endian adders, files, edits refused whole, and growth.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <cstring>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <zel/memory.h>
#include <zel/minimem.h>

#include "io/MemoryStream.h"

namespace {

std::string Bytes(const CMiniMem& m) { return std::string(reinterpret_cast<const char*>(m.GetData()), m.GetSize()); }
// "capacity/size", after resizing to n when one is given.
std::string Shape(const CMiniMem& m) { return std::to_string(m.GetCapacity()) + "/" + std::to_string(m.GetSize()); }
std::string Shape(CMiniMem& m, int n) { m.Realloc(n); return Shape(m); }
// An operation's result and the contents after it, as "result:bytes".
std::string After(CMiniMem& m, int result) { return std::to_string(result) + ":" + Bytes(m); }
unsigned char* U(const char* s) { return reinterpret_cast<unsigned char*>(const_cast<char*>(s)); }
void Set(CMiniMem& m, const std::string& s) { m.Free(); m.Append(const_cast<char*>(s.data()), int(s.size())); }

TEST(MiniMem, CapacityRoundsPastTheSizeAndShrinksPastOneGranuleOfSlack) {
    CMiniMem exact, over;
    CAlignMem big(1024);
    exact.Alloc(32);
    over.Alloc(33);
    big.Alloc(1);
    EXPECT_EQ(Shape(exact) + " " + Shape(over) + " " + Shape(big), "64/32 64/33 1024/1");
    EXPECT_EQ(CAlignMem(0).GetMemAlignSize(), 32);  // a zero granule would divide by zero
    unsigned char* block = over.GetData();
    EXPECT_EQ(over.Realloc(32), block);  // within one granule of slack: kept
    EXPECT_EQ(Shape(over, 31), "32/31");
    EXPECT_EQ(Shape(over, 32), "32/32");  // growing to exactly the capacity keeps the block
    EXPECT_TRUE(!exact.Realloc(0) && !exact.Alloc(0) && Shape(exact) == "0/0");  // 0 frees

    big.xchg(over);  // contents swap, the granule does not
    EXPECT_EQ(Shape(big) + " " + Shape(over), "32/32 1024/1");
    EXPECT_EQ(big.GetMemAlignSize(), 1024);
    zel_free(big.Detach());  // a block still owned by the buffer would be freed twice
    EXPECT_EQ(Shape(big), "0/0");
}

TEST(MiniMem, EditsInPlaceAndFromItsOwnBytes) {
    CMiniMem m, empty;
    EXPECT_EQ(After(m, m.Append(empty)), "1:");
    Set(m, "ad");
    EXPECT_EQ(After(m, m.Insert(1, const_cast<char*>("bc"), 2)), "1:abcd");
    EXPECT_EQ(After(m, m.Insert(0, nullptr, 1)), std::string("1:\0abcd", 7));
    Set(m, "abc");  // the source may lie inside the buffer itself
    EXPECT_EQ(After(m, m.Append(m)), "1:abcabc");
    EXPECT_EQ(After(m, m.Insert(1, m.GetData() + 3, 3)), "1:aabcbcabc");
    Set(m, "ab");  // past the end, the buffer grows to pos + n
    EXPECT_EQ(m.Insert(5, const_cast<char*>("xy"), 2), 1);
    EXPECT_EQ(Bytes(m).substr(0, 2) + Bytes(m).substr(5), "abxy");

    Set(m, "abcdef");
    EXPECT_EQ(After(m, m.Remove(2, 100)), "1:ab");  // clipped at the end
    EXPECT_EQ(After(m, m.Remove(-1, 1)), "1:a");    // -1 drops n bytes from the end
    EXPECT_EQ(After(m, m.Remove(0, 0)) + After(m, m.Insert(0, nullptr, 0)), "1:a1:a");
    EXPECT_TRUE(m.Remove(0, 1) && !m.GetData() && !m.Remove(0, 1));
    Set(m, "abcdef");
    EXPECT_EQ(After(m, m.Replace(1, 2, U("XYZW"), 4)), "1:aXYZWdef");
    EXPECT_EQ(After(m, m.Replace(1, 4, U("q"), 1)), "1:aqdef");
    EXPECT_EQ(After(m, m.Replace(1, 0, U("--"), 2)), "1:a--qdef");  // n = 0 inserts
    EXPECT_EQ(After(m, m.Replace(1, 2, U(""), 0)), "1:aqdef");      // m = 0 removes
    EXPECT_EQ(After(m, m.Replace(3, 100, nullptr, 2)), std::string("1:aqd\0\0", 7));  // only up to the end
}

TEST(MiniMem, AddersWriteLittleEndian) {
    CMiniMem m;
    EXPECT_EQ(m.AddByte(0x11), 1);  // no room yet: the result of Append
    EXPECT_EQ(m.AddByte(0x22), 2);  // in place: the new size
    m.AddWord(0x3344);
    m.AddDWord(0x55667788u);
    m.AddInt(-1);
    m.AddBool(7);  // stored as given
    m.AddChar(L'中');
    m.AddDouble(1.5);
    const unsigned char expected[] = {0x11, 0x22, 0x44, 0x33, 0x88, 0x77, 0x66, 0x55, 0xFF, 0xFF, 0xFF,
                                      0xFF, 7, 0, 0, 0, 0x2D, 0x4E, 0, 0, 0, 0, 0, 0, 0, 0, 0xF8, 0x3F};
    EXPECT_EQ(Bytes(m), std::string(reinterpret_cast<const char*>(expected), sizeof expected));

    CMiniMem text;  // AddText never adds a terminator; AddStr always does
    text.AddStr(nullptr);
    text.AddText(const_cast<wchar_t*>(L""));
    text.AddText(const_cast<wchar_t*>(L"a"));
    const wchar_t units[] = {0, L'a'};
    EXPECT_EQ(Bytes(text), std::string(reinterpret_cast<const char*>(units), sizeof units));

    int bin[4] = {0, 1, 3, 0x7A7978};  // a byte set of 3 bytes, "xyz"
    m.Free();
    m.AddBin(reinterpret_cast<unsigned char*>(bin));
    m.AddBin(nullptr);
    m.AddSpecNumBytes(3, 0x141, 2, 3);
    m.AddSpecNumBytes(-1);  // a count below 1 shrinks by it
    EXPECT_EQ(Bytes(m), "xyzA\2");
}

TEST(MiniMem, FilesReadAndWritten) {
    std::string path = testing::TempDir() + "minimem_" + std::to_string(getpid());
    std::wstring file(path.begin(), path.end()), nowhere = file + L"_none/x", full = L"/dev/full";
    CMiniMem m, back;
    Set(m, "abcdef");
    EXPECT_EQ(m.WriteIntoELFFile(file.data(), 4), 1);
    EXPECT_EQ(After(back, back.ReadFromFile(file.data(), 50)), "4:abcd");  // fewer than asked
    struct stat info;
    ASSERT_EQ(stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0700u);
    std::filesystem::remove(path);
    EXPECT_TRUE(back.ReadFromFile(nowhere.data(), -1) == -1 && !back.GetData());  // missing file: empty buffer
    EXPECT_TRUE(back.ReadFromFile(nullptr, -1) == -1 && !m.WriteIntoFile(nullptr, -1) && !m.WriteIntoELFFile(nullptr, -1));
    std::string folder = path + "_dir";
    std::filesystem::create_directory(folder);
    std::wstring wideFolder(folder.begin(), folder.end());
    EXPECT_EQ(m.ReadFromFile(wideFolder.data(), 10), -1);  // a directory opens but cannot be read
    std::filesystem::remove(folder);
    EXPECT_EQ(m.WriteIntoELFFile(full.data(), 0), 1);  // nothing to write cannot fail
    Set(m, std::string(64 * 1024, 'z'));  // more than the stream buffers
    EXPECT_FALSE(m.WriteIntoFile(full.data(), -1) || m.WriteIntoELFFile(nowhere.data(), -1));
}

// Out-of-range arguments and allocations refused mid-edit change nothing; a
// source inside the buffer is copied aside first, and when that copy cannot
// be made the edit is refused whole.
TEST(MiniMem, RefusedEditsChangeNothing) {
    const std::string text(31, 'a');  // in a 32-byte block
    CMiniMem m, fresh;
    char x[] = "xyz";
    const std::pair<bool, std::function<bool()>> edits[] = {  // (allocation fails, the edit refused)
        {false, [&] { return m.Insert(-1, x, 1) == 0; }},
        {false, [&] { return m.Insert(0, x, -1) == 0; }},
        {false, [&] { return m.Insert(1, x, INT_MAX) == 0; }},
        {false, [&] { return m.Append(nullptr, -1) == 0; }},
        {false, [&] { return m.Remove(-1, -1) == 0; }},
        {false, [&] { return m.Remove(0, -1) == 0; }},
        {false, [&] { return m.Remove(-2, 1) == 0; }},
        {false, [&] { return m.Replace(-1, 1, nullptr, 0) == 0; }},
        {false, [&] { return m.Replace(0, 1, U("a"), -1) == 0; }},
        {false, [&] { return m.Replace(0, 1, U("a"), INT_MAX) == 0; }},
        {false, [&] { return m.Realloc(-4) == nullptr; }},
        {false, [&] { return m.Append(x, INT_MAX) == 0; }},
        {false, [&] { return m.Remove(40, 1) == 0; }},
        {false, [&] { return m.Replace(0, -1, U("a"), 1) == 0; }},
        {false, [&] { return m.AddSpecNumBytes(INT_MAX) == 0; }},
        {false, [&] { return fresh.Alloc(INT_MAX - 5) == nullptr; }},  // rounding up would pass INT_MAX
        {true, [&] { return m.Insert(3, x, 3) == 0; }},
        {true, [&] { return m.Replace(3, 1, U("abc"), 3) == 0; }},
        {true, [&] { return m.AddSpecNumBytes(3, 1, 2, 3) == 0; }},
        {true, [&] { return m.AddDWord(1) == 0; }},
        {true, [&] { return m.Append(m.GetData(), 31) == 0; }},
        {true, [&] { return m.Replace(0, 1, m.GetData(), 30) == 0; }},
    };
    Set(m, text);
    for (auto& [fails, edit] : edits) {
        zel::FailAllocationAfter(fails ? 1 : 0);
        EXPECT_TRUE(edit());
        zel::FailAllocationAfter(0);
        EXPECT_EQ(Shape(m) + Bytes(m), "32/31" + text);
    }
    EXPECT_EQ(Shape(fresh), "0/0");
}

// Removing shrinks the block; when the allocator refuses, the bytes are still
// in place and only the size drops.
TEST(MiniMem, ShrinkingKeepsTheBlockWhenTheAllocatorRefuses) {
    CMiniMem m;
    Set(m, std::string(100, 'a') + std::string(900, 'b'));
    int capacity = m.GetCapacity();
    zel::FailAllocationAfter(1);
    EXPECT_EQ(m.Remove(100, 900), 1);
    zel::FailAllocationAfter(0);
    EXPECT_EQ(Bytes(m), std::string(100, 'a'));
    EXPECT_EQ(m.GetCapacity(), capacity);
}

// Growth by small adds: the capacity a buffer shows follows the granule rule
// at every step, while the block beneath moves only a logarithmic number of
// times. Under the sanitizers any step that trusted a block too small for it
// would show as a write past the block.
int Rounded(int n, int granule) { return n + granule - n % granule; }

// Adds `width` bytes at a time up to `total`, checking the capacity after
// every add; returns how often the block moved.
int Fill(CMiniMem& m, int granule, int width, int total, const std::function<void(CMiniMem&, int)>& add) {
    int moves = 0;
    for (int i = 0; m.GetSize() + width <= total; ++i) {
        int size = m.GetSize(), capacity = m.GetCapacity();
        unsigned char* block = m.GetData();
        add(m, i);
        EXPECT_EQ(m.GetSize(), size + width);
        int expected = size + width <= capacity ? capacity : Rounded(size + width, granule);
        if (m.GetCapacity() != expected) {
            ADD_FAILURE() << "capacity " << m.GetCapacity() << " at size " << m.GetSize() << ", expected " << expected;
            break;
        }
        moves += block != m.GetData();
    }
    return moves;
}

TEST(MiniMemGrowth, CapacityFollowsTheGranuleWhileTheBlockMovesRarely) {
    auto addByte = [](CMiniMem& m, int i) { m.AddByte(static_cast<unsigned char>(i)); };
    CMiniMem bytes;
    EXPECT_LE(Fill(bytes, 32, 1, 1 << 20, addByte), 40);
    for (int i = 0; i < 1 << 20; i += 4099) ASSERT_EQ(bytes.GetData()[i], static_cast<unsigned char>(i));
    CAlignMem odd(100);  // a granule that is not a power of two
    EXPECT_LE(Fill(odd, 100, 4, 1 << 20, [](CMiniMem& m, int i) { m.AddDWord(unsigned(i)); }), 40);
    // After a shrink or an exchange between granules, adds still step within
    // what the block really holds.
    bytes.Remove(100, bytes.GetSize() - 100);
    EXPECT_EQ(bytes.GetCapacity(), 128);
    Fill(bytes, 32, 1, 9000, addByte);
    CAlignMem wide(1000);
    wide.Alloc(1);
    wide.xchg(bytes);  // a 1000-byte capacity from the wider granule
    Fill(bytes, 32, 1, 20000, addByte);
}

// WriteInt's own step gives the bytes and capacity of AddInt; a growth the
// allocator refuses writes nothing and the stream stays as it was.
TEST(MiniMemGrowth, StreamWriteIntStepsLikeAddIntAndSurvivesARefusedGrowth) {
    CMemoryStream stream;
    CMiniMem plain;
    for (int i = 0; i < 5000; ++i) {
        EXPECT_EQ(stream.WriteInt(i), 1);
        plain.AddInt(i);
        ASSERT_EQ(stream.GetCapacity(), plain.GetCapacity()) << i;
    }
    EXPECT_EQ(std::memcmp(stream.GetData(), plain.GetData(), plain.GetSize()), 0);

    unsigned char* block = stream.GetData();
    // Steps within the block allocate nothing; the first growth that must
    // move the block is refused.
    zel::FailAllocationAfter(1);
    int before;
    do {
        before = stream.GetSize();
        EXPECT_EQ(stream.WriteInt(8), 1);
    } while (stream.GetSize() == before + 4 && before < (1 << 20));
    zel::FailAllocationAfter(0);
    EXPECT_TRUE(stream.GetSize() == before && stream.GetData() == block);
    EXPECT_GE(stream.GetCapacity(), stream.GetSize());
    EXPECT_EQ(stream.WriteInt(9), 1);  // the allocator works again
    EXPECT_EQ(stream.GetSize(), before + 4);
}

}  // namespace
