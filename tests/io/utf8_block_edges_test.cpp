// The UTF-8 check where its wide block path hands over to the byte path:
// sequences of every length cut at every block edge, a text that ends at
// once, and a check fed again after it has decided.
#include <gtest/gtest.h>

#include <string>

#include "io/BinaryFile.h"

namespace {

bool Legal(const std::string& s) {
    auto* p = reinterpret_cast<const unsigned char*>(s.data());
    return IsLegalUtf8(p, p + s.size());
}

// Without a prefix the characters end on the 16-byte block edges; a
// two-byte character first shifts the longer ones so the block path stops
// inside them.
TEST(Utf8BlockEdges, SequencesCutAtEveryBlockEdge) {
    for (std::string prefix : {"", "\xC3\xA9"})
        for (std::string c : {"\xC3\xA9", "\xE4\xB8\xAD", "\xF0\x9F\x98\x80"}) {
            std::string text = prefix;
            while (text.size() < 120) text += c;
            for (size_t n = 64; n <= 120; ++n)
                EXPECT_EQ(Legal(text.substr(0, n)), (n - prefix.size()) % c.size() == 0)
                    << prefix.size() << "-byte prefix, " << c.size() << "-byte characters, " << n;
        }
}

TEST(Utf8BlockEdges, EarlyZeroEmptyInputAndFeedingAfterTheAnswer) {
    std::string zeroAtOnce = std::string("\xC3\xA9", 2) + std::string(1, '\0') + std::string(70, '\xFF');
    EXPECT_TRUE(Legal(zeroAtOnce)) << "the text ends at its zero byte";
    EXPECT_TRUE(IsLegalUtf8(nullptr, nullptr));
    Utf8TextCheck check;
    const unsigned char bad[] = {0xFF}, good[] = {'a'};
    EXPECT_FALSE(check.Feed(bad, 1));
    EXPECT_FALSE(check.Feed(good, 1)) << "decided: nothing more is read";
    EXPECT_FALSE(check.Legal());
}

}  // namespace
