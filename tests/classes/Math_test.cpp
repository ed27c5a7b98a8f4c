// Plain results are pinned by tests/scripts/math.zs; these reach the values a
// script cannot write (infinities, NaN, signed zeros, subnormals).
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>

extern "C" {
double Math_Acos(double), Math_Asin(double), Math_Atan(double), Math_Cos(double), Math_Cosh(double);
double Math_Exp(double), Math_Fabs(double), Math_Floor(double), Math_Log(double), Math_Log10(double);
double Math_Sin(double), Math_Sinh(double), Math_Sqrt(double), Math_Tan(double), Math_Tanh(double);
double Math_Atan2(double, double), Math_Fmod(double, double), Math_Pow(double, double);
double Math_Ceil(int, double), Math_Frexp(double, int);
double Math_ChangeSign(double), Math_CopySign(double, double), Math_Div(double, double), Math_Hypot(double, double);
}

namespace {

const double kInf = INFINITY, kNaN = NAN;
const double kSpread[] = {0.0, -0.0, 1.0, -1.0, 0.5, -1.2, 2.5, M_PI, 1e-310, -1e-310, 1e300, -DBL_MAX, kInf, -kInf, kNaN};

// Read through a volatile so the compiler cannot fold the C library's side.
double Opaque(double x) {
    volatile double v = x;
    return v;
}

// Equal bit patterns, any NaN matching any NaN.
::testing::AssertionResult Same(double expected, double actual) {
    uint64_t a, b;
    std::memcpy(&a, &expected, 8);
    std::memcpy(&b, &actual, 8);
    if ((std::isnan(expected) && std::isnan(actual)) || a == b) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "expected " << expected << " got " << actual;
}

using Binary = double (*)(double, double);
#define UNARY(ours, libc) \
    {#libc, [](double x, double) { return ours(x); }, [](double x, double) { return std::libc(Opaque(x)); }}
#define BINARY(ours, libc) \
    {#libc, [](double x, double y) { return ours(x, y); }, [](double x, double y) { return std::libc(Opaque(x), Opaque(y)); }}

}  // namespace

TEST(Math, EveryPlainFunctionMatchesTheCLibraryBitForBit) {
    const struct { const char* name; Binary ours, libc; } cases[] = {
        UNARY(Math_Acos, acos), UNARY(Math_Asin, asin), UNARY(Math_Atan, atan), UNARY(Math_Cos, cos),
        UNARY(Math_Cosh, cosh), UNARY(Math_Exp, exp), UNARY(Math_Fabs, fabs), UNARY(Math_Floor, floor),
        UNARY(Math_Log, log), UNARY(Math_Log10, log10), UNARY(Math_Sin, sin), UNARY(Math_Sinh, sinh),
        UNARY(Math_Sqrt, sqrt), UNARY(Math_Tan, tan), UNARY(Math_Tanh, tanh),
        BINARY(Math_Atan2, atan2), BINARY(Math_Fmod, fmod), BINARY(Math_Pow, pow),
        // The leading word of 求极限 is ignored; 取尾数 keeps its exponent to itself.
        {"ceil", [](double x, double) { return Math_Ceil(0x7fffffff, x); },
         [](double x, double) { return std::ceil(Opaque(x)); }},
        {"frexp", [](double x, double) { return Math_Frexp(x, 99); },
         [](double x, double) {
             int e;
             return std::frexp(Opaque(x), &e);
         }},
    };
    for (const auto& c : cases)
        for (double a : kSpread)
            for (double b : kSpread)
                EXPECT_TRUE(Same(c.libc(a, b), c.ours(a, b))) << c.name << "(" << a << ", " << b << ")";
}

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
