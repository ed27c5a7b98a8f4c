// The UTF-8 legality test of 取文件类型 against an independent decoder that rejects
// overlongs, surrogates, values past U+10FFFF and broken sequences by arithmetic,
// fed whole and in pieces, and through files read in small pieces.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <cstdint>
#include <string>
#include <vector>

#include "common/test_object.h"
#include "binary_file_methods.h"
#include "io/BinaryFile.h"
#include "io_test_util.h"
#include <zel/services.h>
#include <zel/values.h>

namespace {

bool ReferenceDecodes(const std::string& s) {
    static const uint8_t kPayload[] = {0x7F, 0x1F, 0x0F, 0x07};
    static const uint32_t kMinimum[] = {0, 0x80, 0x800, 0x10000};
    for (size_t i = 0; i < s.size(); ++i) {
        auto lead = uint8_t(s[i]);
        int extra = lead < 0x80 ? 0 : (lead & 0xE0) == 0xC0 ? 1 : (lead & 0xF0) == 0xE0 ? 2 : (lead & 0xF8) == 0xF0 ? 3 : -1;
        if (extra < 0 || i + extra >= s.size()) return false;
        uint32_t cp = lead & kPayload[extra];
        for (int k = 0; k < extra; ++k) {
            auto trail = uint8_t(s[++i]);
            if ((trail & 0xC0) != 0x80) return false;
            cp = (cp << 6) | (trail & 0x3F);
        }
        if (cp < kMinimum[extra] || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return false;
    }
    return true;
}

// Encodes any value up to U+10FFFF, surrogates included.
std::string Utf8(uint32_t cp) {
    static const uint8_t kLead[] = {0, 0xC0, 0xE0, 0xF0};
    int extra = cp < 0x80 ? 0 : cp < 0x800 ? 1 : cp < 0x10000 ? 2 : 3;
    std::string out(1, char(kLead[extra] | (cp >> (6 * extra))));
    for (int k = extra - 1; k >= 0; --k) out += char(0x80 | ((cp >> (6 * k)) & 0x3F));
    return out;
}

// The text ends at its first zero byte.
bool ReferenceText(const std::string& s) { return ReferenceDecodes(s.substr(0, s.find('\0'))); }

bool Legal(const std::string& s) {
    auto p = reinterpret_cast<const unsigned char*>(s.data());
    return IsLegalUtf8(p, p + s.size());
}

bool LegalInPieces(const std::string& s, size_t piece) {
    Utf8TextCheck check;
    auto p = reinterpret_cast<const unsigned char*>(s.data());
    for (size_t at = 0; at < s.size() && check.Feed(p + at, std::min(piece, s.size() - at)); at += piece) {
    }
    return check.Legal();
}

std::vector<std::string> Corpus() {
    std::vector<std::string> corpus = {
        "", "a", "plain text", Utf8(0x7F), Utf8(0x80), Utf8(0x7FF), Utf8(0x800), Utf8(0xFFFF),
        Utf8(0x10000), Utf8(0x10FFFF), Utf8(0xD7FF), Utf8(0xE000), "中文" "abc",
        "\xC0\x80", "\xC1\xBF", "\xE0\x80\x80", "\xE0\x9F\xBF", "\xF0\x80\x80\x80", "\xF0\x8F\xBF\xBF",  // overlongs
        "\xED\xA0\x80", "\xED\xBF\xBF", "\xED\xAF\xBF\xED\xB0\x80",                                    // surrogates
        "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xF7\xBF\xBF\xBF",                                    // past U+10FFFF
        "\xF8\x88\x80\x80\x80", "\xFC\x84\x80\x80\x80\x80", "\xFE", "\xFF",                            // old long forms
        "\xC3", "\xE4\xB8", "\xF0\x9F\x98", "ab\xE2\x82",                                              // truncated
        "\x80", "a\xBFz", "\xC3\xA9\x80", "\xE2\x28\xA1", "\xC3\x28",                                  // stray and bad trails
    };
    for (uint32_t cp = 0x80; cp <= 0x10FFFF; cp += 0x1F3) corpus.push_back(Utf8(cp) + "x");
    for (int lead = 0x80; lead <= 0xFF; ++lead)
        for (int second : {0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC0})
            corpus.push_back(std::string{char(lead), char(second), '\x80', '\x80'});
    return corpus;
}

// Whole, and in pieces behind 0..33 ASCII bytes, so every sequence meets
// every piece border and every vector position, and is cut after every byte.
TEST(Utf8Legality, AgreesWithAReferenceDecoderWholeAndInPieces) {
    std::vector<std::string> corpus = Corpus();
    for (std::string extra : {std::string("ab\0\xFF", 4), std::string("\xE4\0\x80", 3), std::string("\0", 1),
                              std::string("\xC3\xA9\0\xC3", 4), std::string("\xE4\xB8\xAD\0", 4)})
        corpus.push_back(extra);
    int legal = 0;
    for (size_t i = 0; i < corpus.size(); ++i) {
        EXPECT_EQ(Legal(corpus[i]), ReferenceText(corpus[i])) << testing::PrintToString(corpus[i]);
        legal += Legal(corpus[i]);
        if (corpus[i].size() > 6 && i % 7) continue;  // thinned where it repeats
        for (size_t pad = 0; pad <= 33; ++pad) {
            std::string s = std::string(pad, 'a') + corpus[i] + "tail";
            bool expected = ReferenceText(s);
            for (size_t piece : {size_t(1), size_t(2), size_t(3), size_t(5), size_t(16), size_t(64)})
                ASSERT_EQ(LegalInPieces(s, piece), expected) << testing::PrintToString(s) << " in pieces of " << piece;
        }
    }
    EXPECT_TRUE(legal > 100 && legal < int(corpus.size())) << "the corpus holds both kinds";
}

// Long texts go 16 bytes at a time where the processor allows: one stopping
// byte at each position of an ASCII run, and characters cut at every block
// edge (a two-byte prefix shifts the longer ones so the block path stops
// inside them), must be found exactly.
TEST(Utf8Legality, BlockPathStopsExactly) {
    for (size_t at = 0; at < 100; ++at) {
        for (char stop : {'\x80', '\xFF', '\0'}) {
            std::string s(100, 'x');
            s[at] = stop;
            EXPECT_EQ(Legal(s), stop == '\0') << at;
        }
    }
    for (std::string prefix : {"", "\xC3\xA9"})
        for (std::string c : {"\xC3\xA9", "\xE4\xB8\xAD", "\xF0\x9F\x98\x80"}) {
            std::string text = prefix;
            while (text.size() < 120) text += c;
            for (size_t n = 64; n <= 120; ++n)
                EXPECT_EQ(Legal(text.substr(0, n)), (n - prefix.size()) % c.size() == 0)
                    << prefix.size() << "-byte prefix, " << c.size() << "-byte characters, " << n;
        }
}

TEST(Utf8Legality, EarlyZeroEmptyInputAndFeedingAfterTheAnswer) {
    std::string zeroAtOnce = std::string("\xC3\xA9", 2) + std::string(1, '\0') + std::string(70, '\xFF');
    EXPECT_TRUE(Legal(zeroAtOnce)) << "the text ends at its zero byte";
    EXPECT_TRUE(IsLegalUtf8(nullptr, nullptr));
    Utf8TextCheck check;
    const unsigned char bad[] = {0xFF}, good[] = {'a'};
    EXPECT_FALSE(check.Feed(bad, 1));
    EXPECT_FALSE(check.Feed(good, 1)) << "decided: nothing more is read";
    EXPECT_FALSE(check.Legal());
}

class FileTypeTest : public TempDirTest {
protected:
    ~FileTypeTest() override { zel::SetFileTypeChunkSize(0); }
    int TypeOf(const std::string& bytes) {
        Owned path(zel::NewText(Make("f", bytes).c_str()));
        return BinaryFile_GetFileType(bin, path.h);
    }
    TestObject bin{&g_info_BinaryFile, BinaryFile_Init, BinaryFile_Free};
};

// Files read 7 bytes at a time: sequences and signatures meet the borders.
TEST_F(FileTypeTest, SmallPiecesDecideLikeTheWholeFile) {
    zel::SetFileTypeChunkSize(7);
    std::string mixed;
    for (int i = 0; i < 50; ++i) mixed += "中文 text, ü ";
    EXPECT_EQ(TypeOf(""), 0);
    EXPECT_EQ(TypeOf("\xEF\xBB\xBF\xFF"), 4);
    EXPECT_TRUE(TypeOf("\xFF\xFE") == 2 && TypeOf("\xFE\xFF") == 3);
    EXPECT_EQ(TypeOf(mixed), 5);
    EXPECT_EQ(TypeOf(mixed + "\xE4\xB8"), 1);             // cut at the end of the file
    EXPECT_EQ(TypeOf(mixed + std::string("\0\xFF", 2)), 5);  // nothing after the zero byte counts
    for (size_t at = 5; at < 12; ++at)  // a surrogate across the first piece border
        EXPECT_EQ(TypeOf(mixed.substr(0, 40).insert(at, "\xED\xA0\x80")), 1) << at;
}

// A sparse file past 2 GiB opens and is read with 64-bit offsets; it is too
// large for a byte set, so reading it whole gives the empty one.
TEST_F(FileTypeTest, FilesPastTwoGigabytes) {
    WriteFileBytes(dir.Path("big"), "abc");
    int fd = open(dir.Path("big").c_str(), O_WRONLY | O_LARGEFILE);
    ASSERT_GE(fd, 0);
    bool grown = ftruncate64(fd, (5LL << 29) + 1) == 0;  // 2.5 GiB, holes read as zero
    close(fd);
    if (!grown) GTEST_SKIP() << "no sparse files here";
    Owned path(zel::NewText(dir.WPath("big").c_str()));
    EXPECT_EQ(BinaryFile_GetFileType(bin, path.h), 5);
    EXPECT_EQ(BinaryFile_ReadFile(bin, path.h, 1), zel::EmptyBin());
}

}  // namespace
