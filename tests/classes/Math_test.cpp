// Plain results are pinned by tests/scripts/math.zs; these reach the values a
// script cannot write (infinities, NaN, signed zeros) in the rules kept on purpose.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>

extern "C" {
double Math_ChangeSign(double), Math_CopySign(double, double), Math_Div(double, double), Math_Hypot(double, double);
}

namespace {

const double kInf = INFINITY, kNaN = NAN;

// Equal bit patterns, any NaN matching any NaN.
::testing::AssertionResult Same(double expected, double actual) {
    uint64_t a, b;
    std::memcpy(&a, &expected, 8);
    std::memcpy(&b, &actual, 8);
    if ((std::isnan(expected) && std::isnan(actual)) || a == b) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "expected " << expected << " got " << actual;
}

}  // namespace

TEST(Math, KeptRulesAtTheEdges) {
    const struct { double expected, actual; } cases[] = {
        // 改符号 negates positives and takes the magnitude of the rest.
        {-kInf, Math_ChangeSign(kInf)}, {kInf, Math_ChangeSign(-kInf)},
        // 复制符号 changes only strictly opposite signs, unlike copysign.
        {3.0, Math_CopySign(3, -0.0)}, {-0.0, Math_CopySign(-0.0, 1)}, {-3.0, Math_CopySign(-3, kNaN)},
        {-kInf, Math_CopySign(kInf, -kInf)},
        // 整除 is the quotient less the remainder; a zero divisor gives 0.
        {-2.5, Math_Div(-7, 2)}, {0.0, Math_Div(1, -0.0)}, {0.0, Math_Div(kNaN, 0)}, {kNaN, Math_Div(kInf, 2)},
        {kNaN, Math_Div(1, kNaN)},
        // 求斜边 is unscaled: the squares underflow; NaN wins over infinity.
        {0.0, Math_Hypot(1e-200, 1e-200)}, {0.0, Math_Hypot(-0.0, 0.0)}, {kNaN, Math_Hypot(kInf, kNaN)},
    };
    for (size_t i = 0; i < std::size(cases); ++i) EXPECT_TRUE(Same(cases[i].expected, cases[i].actual)) << "case " << i;
    EXPECT_FALSE(std::signbit(Math_ChangeSign(-kNaN)));
}
