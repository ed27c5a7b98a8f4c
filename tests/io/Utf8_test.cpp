// The UTF-8 legality test of 取文件类型 against an independent decoder that rejects
// overlongs, surrogates, values past U+10FFFF and broken sequences by arithmetic.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "io/BinaryFile.h"

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

bool Legal(const std::string& s) {
    auto p = reinterpret_cast<const unsigned char*>(s.data());
    return IsLegalUtf8(p, p + s.size());
}

TEST(Utf8Legality, AgreesWithAReferenceDecoderOnACorpus) {
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
    int legal = 0;
    for (const std::string& s : corpus) {
        EXPECT_EQ(Legal(s), ReferenceDecodes(s)) << testing::PrintToString(s);
        legal += Legal(s);
    }
    EXPECT_TRUE(legal > 100 && legal < int(corpus.size())) << "the corpus holds both kinds";
}

}  // namespace
