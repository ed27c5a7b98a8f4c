// The byte buffer at its limits: sizes near INT_MAX, negative arguments,
// allocations refused mid-edit and files that fail.
#include <gtest/gtest.h>
#include <unistd.h>

#include <climits>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <zel/memory.h>
#include <zel/minimem.h>

namespace {

std::string Bytes(const CMiniMem& m) { return std::string(reinterpret_cast<const char*>(m.GetData()), m.GetSize()); }
void Fill(CMiniMem& m, const std::string& s) {
    m.Free();
    m.Append(const_cast<char*>(s.data()), int(s.size()));
}
unsigned char* U(const char* s) { return reinterpret_cast<unsigned char*>(const_cast<char*>(s)); }

TEST(MiniMemLimits, RefusedEditsChangeNothing) {
    CMiniMem m;
    char x[] = "xyz";
    std::vector<std::pair<const char*, std::function<int()>>> edits = {
        {"insert none", [&] { return m.Insert(2, x, 0) == 1; }},
        {"insert before start", [&] { return m.Insert(-1, x, 1) == 0; }},
        {"insert negative count", [&] { return m.Insert(0, x, -1) == 0; }},
        {"append negative count", [&] { return m.Append(nullptr, -1) == 0; }},
        {"insert past INT_MAX", [&] { return m.Insert(1, x, INT_MAX) == 0; }},
        {"append past INT_MAX", [&] { return m.Append(x, INT_MAX) == 0; }},
        {"append to INT_MAX", [&] { return m.Append(nullptr, INT_MAX - 6) == 0; }},
        {"remove negative tail", [&] { return m.Remove(-1, -1) == 0; }},
        {"remove negative count", [&] { return m.Remove(0, -1) == 0; }},
        {"remove past end", [&] { return m.Remove(6, 1) == 0; }},
        {"remove before start", [&] { return m.Remove(-2, 1) == 0; }},
        {"replace before start", [&] { return m.Replace(-1, 1, nullptr, 0) == 0; }},
        {"replace negative range", [&] { return m.Replace(0, -1, U("a"), 1) == 0; }},
        {"replace negative source", [&] { return m.Replace(0, 1, U("a"), -1) == 0; }},
        {"replace past INT_MAX", [&] { return m.Replace(0, 1, U("a"), INT_MAX) == 0; }},
        {"add bytes past INT_MAX", [&] { return m.AddSpecNumBytes(INT_MAX) == 0; }},
        {"realloc negative", [&] { return m.Realloc(-4) == nullptr; }},
    };
    Fill(m, "abcdef");
    for (auto& [name, edit] : edits) {
        EXPECT_TRUE(edit()) << name;
        EXPECT_EQ(Bytes(m), "abcdef") << name;
    }
    CMiniMem fresh;
    EXPECT_EQ(fresh.Alloc(INT_MAX - 5), nullptr);  // rounding up would pass INT_MAX
    EXPECT_TRUE(fresh.GetCapacity() == 0 && fresh.GetSize() == 0);
}

// A source inside the buffer is copied aside first; when that copy cannot be
// made the edit is refused whole.
TEST(MiniMemLimits, SelfSourcedEditsRefusedWhenTheAsideCopyFails) {
    const std::string text(40, 'a');
    CMiniMem m;
    std::vector<std::function<int()>> edits = {
        [&] { return m.Append(m.GetData(), 40); },
        [&] { return m.Insert(1, m.GetData(), 30); },
        [&] { return m.Replace(0, 1, m.GetData(), 30); },
    };
    for (auto& edit : edits) {
        Fill(m, text);
        zel::FailAllocationAfter(1);
        EXPECT_EQ(edit(), 0);
        zel::FailAllocationAfter(0);
        EXPECT_EQ(Bytes(m), text);
    }
    char outside[] = "outside";  // on the stack, apart from the buffer: used in place
    Fill(m, text);
    EXPECT_EQ(m.Insert(1, outside, 7), 1);
    EXPECT_EQ(Bytes(m), "a" + std::string(outside) + text.substr(1));
    Fill(m, "abc");
    zel::FailAllocationAfter(1);
    EXPECT_EQ(m.Insert(40, U("z"), 1), 0) << "past the end, on a block that must grow";
    zel::FailAllocationAfter(0);
    EXPECT_EQ(Bytes(m), "abc");
}

// Removing shrinks the block; when the allocator refuses, the bytes are still
// in place and only the size drops.
TEST(MiniMemLimits, ShrinkingKeepsTheBlockWhenTheAllocatorRefuses) {
    std::string text;
    for (int i = 0; i < 1000; ++i) text += char('a' + i % 26);
    std::vector<std::pair<std::function<int(CMiniMem&)>, std::string>> edits = {
        {[](CMiniMem& m) { return m.Remove(0, 900); }, text.substr(900)},
        {[](CMiniMem& m) { return m.Replace(10, 900, U("#"), 1); }, text.substr(0, 10) + "#" + text.substr(910)},
    };
    for (auto& [edit, expected] : edits) {
        CMiniMem m;
        Fill(m, text);
        int capacity = m.GetCapacity();
        zel::FailAllocationAfter(1);
        EXPECT_EQ(edit(m), 1);
        zel::FailAllocationAfter(0);
        EXPECT_EQ(Bytes(m), expected);
        EXPECT_EQ(m.GetCapacity(), capacity);
    }
}

TEST(MiniMemLimits, FilesThatFailMidway) {
    std::string dir = testing::TempDir() + "minimem_dir_" + std::to_string(getpid());
    std::filesystem::create_directory(dir);
    std::wstring wideDir(dir.begin(), dir.end()), full = L"/dev/full";
    CMiniMem m;
    Fill(m, "kept");
    EXPECT_EQ(m.ReadFromFile(wideDir.data(), 10), -1) << "a directory opens but cannot be read";
    EXPECT_EQ(m.GetData(), nullptr);
    std::filesystem::remove(dir);

    Fill(m, std::string(64 * 1024, 'z'));  // more than the stream buffers
    EXPECT_EQ(m.WriteIntoFile(full.data(), -1), 0);
    EXPECT_EQ(m.WriteIntoELFFile(full.data(), -1), 0);
    EXPECT_EQ(m.WriteIntoELFFile(nullptr, -1), 0);
    EXPECT_EQ(m.WriteIntoELFFile(full.data(), 0), 1) << "nothing to write cannot fail";
}

}  // namespace
