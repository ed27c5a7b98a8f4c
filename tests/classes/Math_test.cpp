#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "common/test_object.h"
#include "runtime/loader.h"

extern "C" {
extern tagTBaseTypeInfo g_info_Math;
int Math_Init(ZelObject*);
void Math_Free(ZelObject*);
int Math_Clone(ZelObject*);
int Math_Abs(int);
double Math_Acos(double);
double Math_Asin(double);
double Math_Atan(double);
double Math_Atan2(double, double);
double Math_Ceil(int, double);
double Math_ChangeSign(double);
double Math_CopySign(double, double);
double Math_Cos(double);
double Math_Cosh(double);
double Math_Div(double, double);
double Math_Exp(double);
double Math_Fabs(double);
double Math_Floor(double);
double Math_Frexp(double, int);
double Math_Hypot(double, double);
double Math_Ldexp(double, int);
double Math_Log(double);
double Math_Log10(double);
double Math_Fmod(double, double);
double Math_Pow(double, double);
int Math_Rand();
double Math_Sin(double);
double Math_Sinh(double);
double Math_Sqrt(double);
void Math_Srand();
double Math_Tan(double);
double Math_Tanh(double);
}

namespace {

const double kInf = INFINITY;
const double kNaN = NAN;

// Read through a volatile so the compiler cannot fold the C library's side.
double Opaque(double x) {
    volatile double v = x;
    return v;
}

std::vector<double> Spread() {
    return {0.0, -0.0, 1.0, -1.0, 0.5, -0.5, 1.2, -1.2, 2.5, -2.5, 3.0, M_PI, 1e-310, -1e-310,
            1e300, -1e300, DBL_MAX, -DBL_MAX, kInf, -kInf, kNaN};
}

uint64_t Bits(double x) {
    uint64_t b;
    std::memcpy(&b, &x, sizeof b);
    return b;
}

// Equal bit patterns, any NaN matching any NaN.
::testing::AssertionResult Same(double expected, double actual) {
    if (std::isnan(expected) && std::isnan(actual)) return ::testing::AssertionSuccess();
    if (Bits(expected) == Bits(actual)) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "expected " << expected << " got " << actual;
}

}  // namespace

TEST(Math, UnaryFunctionsMatchTheCLibrary) {
    struct Case {
        const char* name;
        double (*ours)(double);
        double (*libc)(double);
    } cases[] = {
        {"acos", Math_Acos, [](double x) { return std::acos(Opaque(x)); }},
        {"asin", Math_Asin, [](double x) { return std::asin(Opaque(x)); }},
        {"atan", Math_Atan, [](double x) { return std::atan(Opaque(x)); }},
        {"cos", Math_Cos, [](double x) { return std::cos(Opaque(x)); }},
        {"cosh", Math_Cosh, [](double x) { return std::cosh(Opaque(x)); }},
        {"exp", Math_Exp, [](double x) { return std::exp(Opaque(x)); }},
        {"fabs", Math_Fabs, [](double x) { return std::fabs(Opaque(x)); }},
        {"floor", Math_Floor, [](double x) { return std::floor(Opaque(x)); }},
        {"log", Math_Log, [](double x) { return std::log(Opaque(x)); }},
        {"log10", Math_Log10, [](double x) { return std::log10(Opaque(x)); }},
        {"sin", Math_Sin, [](double x) { return std::sin(Opaque(x)); }},
        {"sinh", Math_Sinh, [](double x) { return std::sinh(Opaque(x)); }},
        {"sqrt", Math_Sqrt, [](double x) { return std::sqrt(Opaque(x)); }},
        {"tan", Math_Tan, [](double x) { return std::tan(Opaque(x)); }},
        {"tanh", Math_Tanh, [](double x) { return std::tanh(Opaque(x)); }},
    };
    for (const Case& c : cases)
        for (double x : Spread()) EXPECT_TRUE(Same(c.libc(x), c.ours(x))) << c.name << "(" << x << ")";
}

TEST(Math, BinaryFunctionsMatchTheCLibrary) {
    struct Case {
        const char* name;
        double (*ours)(double, double);
        double (*libc)(double, double);
    } cases[] = {
        {"atan2", Math_Atan2, [](double y, double x) { return std::atan2(Opaque(y), Opaque(x)); }},
        {"fmod", Math_Fmod, [](double x, double y) { return std::fmod(Opaque(x), Opaque(y)); }},
        {"pow", Math_Pow, [](double x, double y) { return std::pow(Opaque(x), Opaque(y)); }},
    };
    for (const Case& c : cases)
        for (double a : Spread())
            for (double b : Spread())
                EXPECT_TRUE(Same(c.libc(a, b), c.ours(a, b))) << c.name << "(" << a << ", " << b << ")";
}

TEST(Math, CeilingTakesAWordAheadOfItsDouble) {
    EXPECT_EQ(Math_Ceil(0, 1.2), 2.0);
    EXPECT_EQ(Math_Ceil(0x7fffffff, -1.2), -1.0);  // the leading word is ignored
    for (double x : Spread()) EXPECT_TRUE(Same(std::ceil(Opaque(x)), Math_Ceil(0, x))) << x;
    EXPECT_EQ(Math_Floor(-1.2), -2.0);
}

TEST(Math, IntegerAbsoluteValueIsTwosComplement) {
    EXPECT_EQ(Math_Abs(-5), 5);
    EXPECT_EQ(Math_Abs(5), 5);
    EXPECT_EQ(Math_Abs(0), 0);
    EXPECT_EQ(Math_Abs(INT_MAX), INT_MAX);
    EXPECT_EQ(Math_Abs(-INT_MAX), INT_MAX);
    EXPECT_EQ(Math_Abs(INT_MIN), INT_MIN);
}

TEST(Math, ChangeSignNegatesPositivesAndTakesMagnitudeOtherwise) {
    EXPECT_TRUE(Same(-3.0, Math_ChangeSign(3.0)));
    EXPECT_TRUE(Same(3.0, Math_ChangeSign(-3.0)));
    EXPECT_TRUE(Same(0.0, Math_ChangeSign(-0.0)));
    EXPECT_TRUE(Same(0.0, Math_ChangeSign(0.0)));
    EXPECT_TRUE(Same(-kInf, Math_ChangeSign(kInf)));
    EXPECT_TRUE(Same(kInf, Math_ChangeSign(-kInf)));
    EXPECT_FALSE(std::signbit(Math_ChangeSign(-kNaN)));
}

TEST(Math, CopySignChangesOnlyStrictlyOppositeSigns) {
    EXPECT_TRUE(Same(-3.0, Math_CopySign(3, -1)));
    EXPECT_TRUE(Same(3.0, Math_CopySign(-3, 1)));
    EXPECT_TRUE(Same(-3.0, Math_CopySign(-3, -1)));
    EXPECT_TRUE(Same(3.0, Math_CopySign(3, 0)));
    EXPECT_TRUE(Same(3.0, Math_CopySign(3, -0.0)));   // unlike copysign
    EXPECT_TRUE(Same(-0.0, Math_CopySign(-0.0, 1)));  // zero x stays as it is
    EXPECT_TRUE(Same(-3.0, Math_CopySign(-3, kNaN)));
    EXPECT_TRUE(Same(-kInf, Math_CopySign(kInf, -kInf)));
}

TEST(Math, DivideIsQuotientLessRemainder) {
    EXPECT_EQ(Math_Div(7, 2), 2.5);
    EXPECT_EQ(Math_Div(7.5, 2), 2.25);
    EXPECT_EQ(Math_Div(6, 3), 2.0);
    EXPECT_EQ(Math_Div(-7, 2), -2.5);
    EXPECT_TRUE(Same(0.0, Math_Div(1, 0)));
    EXPECT_TRUE(Same(0.0, Math_Div(1, -0.0)));
    EXPECT_TRUE(Same(0.0, Math_Div(kNaN, 0)));
    EXPECT_TRUE(std::isnan(Math_Div(kInf, 2)));  // fmod of infinity is NaN
    EXPECT_TRUE(std::isnan(Math_Div(1, kNaN)));
}

TEST(Math, HypotenuseIsComputedWithoutScaling) {
    EXPECT_EQ(Math_Hypot(3, 4), 5.0);
    EXPECT_EQ(Math_Hypot(-3, 4), 5.0);
    EXPECT_TRUE(Same(0.0, Math_Hypot(-0.0, 0.0)));
    // The squares overflow, where the C library's hypot would not.
    EXPECT_TRUE(Same(kInf, Math_Hypot(1e200, 1e200)));
    EXPECT_TRUE(std::isfinite(std::hypot(Opaque(1e200), Opaque(1e200))));
    // ...and underflow to zero.
    EXPECT_TRUE(Same(0.0, Math_Hypot(1e-200, 1e-200)));
    EXPECT_TRUE(std::isnan(Math_Hypot(kInf, kNaN)));  // hypot would give infinity
}

TEST(Math, MantissaKeepsItsExponentToItself) {
    for (double x : Spread()) {
        int expected = 0;
        EXPECT_TRUE(Same(std::frexp(Opaque(x), &expected), Math_Frexp(x, 99))) << x;
    }
}

TEST(Math, LdexpMatchesTheCLibrary) {
    for (double x : Spread())
        for (int e : {INT_MIN, -1075, -1, 0, 1, 10, 1024, INT_MAX})
            EXPECT_TRUE(Same(std::ldexp(Opaque(x), e), Math_Ldexp(x, e))) << x << " " << e;
}

TEST(Math, RandomNumbersFollowTheCLibrary) {
    std::srand(7);
    int first = std::rand(), second = std::rand();
    std::srand(7);
    EXPECT_EQ(Math_Rand(), first);
    EXPECT_EQ(Math_Rand(), second);
    Math_Srand();
    for (int i = 0; i < 100; ++i) {
        int r = Math_Rand();
        EXPECT_GE(r, 0);
        EXPECT_LE(r, RAND_MAX);
    }
}

TEST(Math, RecordListsTwentyEightStaticMethodsAndNoElements) {
    EXPECT_STREQ(g_info_Math.name, L"工具.数学运算");
    EXPECT_STREQ(g_info_Math.description, L"本类提供了常用的数学计算函数");
    EXPECT_EQ(g_info_Math.flags, 0x20000000u);
    EXPECT_EQ(g_info_Math.elementCount, 0);
    EXPECT_EQ(g_info_Math.elements, nullptr);
    ASSERT_EQ(g_info_Math.methodCount, 28);
    const wchar_t* names[] = {L"取绝对值", L"求反余弦", L"求反正弦", L"求反正切", L"求反正切2", L"求极限",
                              L"改符号", L"复制符号", L"求余弦", L"求双曲余弦", L"整除", L"求指数",
                              L"取双精度绝对值", L"求底数", L"取尾数", L"求斜边", L"求实数", L"求对数",
                              L"求反对数", L"求余数", L"求次方", L"取随机数", L"求正弦", L"求双曲正弦",
                              L"求平方根", L"置随机数种子", L"求正切", L"求双曲正切"};
    for (int i = 0; i < 28; ++i) {
        const tagMethodItem& m = g_info_Math.methods[i];
        EXPECT_STREQ(m.name, names[i]);
        EXPECT_EQ(m.flags, 0x20000002u) << i;
        EXPECT_NE(m.function, nullptr) << i;
        for (int p = 0; p < m.paramCount; ++p) {
            bool integer = std::wcscmp(m.params[p].type, L"_i") == 0;
            const wchar_t* description = integer ? L"整数值" : i == 22 ? L"双精度小数值" : L"双精度数值";
            EXPECT_STREQ(m.params[p].description, description) << i;
        }
    }
    const tagMethodItem& atan2 = g_info_Math.methods[4];
    EXPECT_STREQ(atan2.params[0].name, L"数值y");
    EXPECT_STREQ(atan2.params[1].name, L"数值x");
    const tagMethodItem& div = g_info_Math.methods[10];
    EXPECT_STREQ(div.params[0].name, L"分子");
    EXPECT_STREQ(div.params[1].name, L"分母");
    EXPECT_STREQ(g_info_Math.methods[14].params[1].type, L"_i");
    EXPECT_STREQ(g_info_Math.methods[21].returnType, L"_i");
    EXPECT_EQ(g_info_Math.methods[21].paramCount, 0);
    EXPECT_STREQ(g_info_Math.methods[25].returnType, L"");
}

TEST(Math, HooksDoNothingAndTheMethodWalkSkipsTheClass) {
    TestObject t(&g_info_Math);
    EXPECT_EQ(Math_Init(t), 0);
    EXPECT_EQ(Math_Clone(t), 0);
    Math_Free(t);
    int seen = 0;
    EnumObjectAllMethods(t, [](tagMethodItem*, void* n) { ++*static_cast<int*>(n); }, &seen);
    EXPECT_EQ(seen, 0);
}
