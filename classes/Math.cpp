// 工具.数学运算: static functions over the C math library. The class keeps no
// state; its hooks exist for the runtime and do nothing.
#include <cmath>
#include <cstdlib>
#include <ctime>

#include <zel/class_table.h>

// Arithmetic done here in plain doubles (SSE) rather than in the x87's wider
// registers, so that results do not depend on what the optimiser keeps in
// registers: an overflowing 求斜边 gives infinity at every optimisation level.
#define DOUBLE_ARITHMETIC __attribute__((target("sse2,fpmath=sse")))

ZEL_EXPORT int Math_Init(ZelObject* obj) { return 0; }
ZEL_EXPORT void Math_Free(ZelObject* obj) {}
ZEL_EXPORT int Math_Clone(ZelObject* obj) { return 0; }

// Two's complement: the most negative integer is its own absolute value.
ZEL_EXPORT int Math_Abs(int x) { return x < 0 ? int(0u - unsigned(x)) : x; }
ZEL_EXPORT double Math_Acos(double x) { return std::acos(x); }
ZEL_EXPORT double Math_Asin(double x) { return std::asin(x); }
ZEL_EXPORT double Math_Atan(double x) { return std::atan(x); }
ZEL_EXPORT double Math_Atan2(double y, double x) { return std::atan2(y, x); }
// The runtime calls this one with an extra 32-bit word (0) ahead of the double.
ZEL_EXPORT double Math_Ceil(int unused, double x) { return std::ceil(x); }

// Negates positive values and takes the magnitude of everything else, so both
// zeros (and NaN) come out with a clear sign bit.
ZEL_EXPORT double Math_ChangeSign(double x) { return x > 0 ? -x : std::fabs(x); }

// Only strictly opposite signs change x; a zero on either side leaves it.
ZEL_EXPORT double Math_CopySign(double x, double y) {
    if (x > 0 && y < 0) return -x;
    if (x < 0 && y > 0) return std::fabs(x);
    return x;
}

ZEL_EXPORT double Math_Cos(double x) { return std::cos(x); }
ZEL_EXPORT double Math_Cosh(double x) { return std::cosh(x); }

// The quotient less the remainder (7, 2 give 2.5): the operation's long-standing
// definition. A zero divisor gives 0.
ZEL_EXPORT DOUBLE_ARITHMETIC double Math_Div(double numerator, double denominator) {
    if (denominator == 0.0) return 0.0;
    return numerator / denominator - std::fmod(numerator, denominator);
}

ZEL_EXPORT double Math_Exp(double x) { return std::exp(x); }
ZEL_EXPORT double Math_Fabs(double x) { return std::fabs(x); }
ZEL_EXPORT double Math_Floor(double x) { return std::floor(x); }

// The exponent lands in the function's own copy of the argument; callers only
// get the mantissa.
ZEL_EXPORT double Math_Frexp(double x, int exponent) { return std::frexp(x, &exponent); }

// Deliberately unscaled: large inputs overflow to infinity.
ZEL_EXPORT DOUBLE_ARITHMETIC double Math_Hypot(double x, double y) { return std::sqrt(x * x + y * y); }

ZEL_EXPORT double Math_Ldexp(double x, int exponent) { return std::ldexp(x, exponent); }
ZEL_EXPORT double Math_Log(double x) { return std::log(x); }
// Named 求反对数 in the language, but it is the base-10 logarithm.
ZEL_EXPORT double Math_Log10(double x) { return std::log10(x); }
ZEL_EXPORT double Math_Fmod(double x, double y) { return std::fmod(x, y); }
ZEL_EXPORT double Math_Pow(double x, double y) { return std::pow(x, y); }
ZEL_EXPORT int Math_Rand() { return std::rand(); }
ZEL_EXPORT double Math_Sin(double x) { return std::sin(x); }
ZEL_EXPORT double Math_Sinh(double x) { return std::sinh(x); }
ZEL_EXPORT double Math_Sqrt(double x) { return std::sqrt(x); }
ZEL_EXPORT void Math_Srand() { std::srand(unsigned(std::time(nullptr))); }
ZEL_EXPORT double Math_Tan(double x) { return std::tan(x); }
ZEL_EXPORT double Math_Tanh(double x) { return std::tanh(x); }

using namespace zel;

static tagParamItem kInt[] = {Param(L"数值", L"_i", L"整数值")};
static tagParamItem kNum[] = {Param(L"数值", L"_db", L"双精度数值")};
static tagParamItem kYX[] = {Param(L"数值y", L"_db", L"双精度数值"), Param(L"数值x", L"_db", L"双精度数值")};
static tagParamItem kX[] = {Param(L"数值x", L"_db", L"双精度数值")};
static tagParamItem kXY[] = {Param(L"数值x", L"_db", L"双精度数值"), Param(L"数值y", L"_db", L"双精度数值")};
static tagParamItem kXSin[] = {Param(L"数值x", L"_db", L"双精度小数值")};
static tagParamItem kDiv[] = {Param(L"分子", L"_db", L"双精度数值"), Param(L"分母", L"_db", L"双精度数值")};
static tagParamItem kXExp[] = {Param(L"数值x", L"_db", L"双精度数值"), Param(L"指数", L"_i", L"整数值")};

static tagMethodItem kMethods[] = {
    Static(L"取绝对值", L"_i", kInt, Math_Abs, L"求整数的绝对值"),
    Static(L"求反余弦", L"_db", kNum, Math_Acos, L"求反余弦值"),
    Static(L"求反正弦", L"_db", kNum, Math_Asin, L"求反正弦值"),
    Static(L"求反正切", L"_db", kNum, Math_Atan, L"求反正切值"),
    Static(L"求反正切2", L"_db", kYX, Math_Atan2, L"求数值y除以数值x的反正切值"),
    Static(L"求极限", L"_db", kNum, Math_Ceil, L"求不小于数值的最小整数"),
    Static(L"改符号", L"_db", kNum, Math_ChangeSign, L"正数变为负数，其余取绝对值"),
    Static(L"复制符号", L"_db", kXY, Math_CopySign, L"按数值y的符号调整数值x的符号"),
    Static(L"求余弦", L"_db", kX, Math_Cos, L"求余弦值"),
    Static(L"求双曲余弦", L"_db", kX, Math_Cosh, L"求双曲余弦值"),
    Static(L"整除", L"_db", kDiv, Math_Div, L"分子除以分母再减去余数，分母为0时返回0"),
    Static(L"求指数", L"_db", kX, Math_Exp, L"求e的数值x次方"),
    Static(L"取双精度绝对值", L"_db", kX, Math_Fabs, L"求小数的绝对值"),
    Static(L"求底数", L"_db", kX, Math_Floor, L"求不大于数值x的最大整数"),
    Static(L"取尾数", L"_db", kXExp, Math_Frexp, L"求数值x的尾数"),
    Static(L"求斜边", L"_db", kXY, Math_Hypot, L"求直角边为数值x和数值y的斜边长"),
    Static(L"求实数", L"_db", kXExp, Math_Ldexp, L"求数值x乘以2的指数次方"),
    Static(L"求对数", L"_db", kX, Math_Log, L"求自然对数"),
    Static(L"求反对数", L"_db", kX, Math_Log10, L"求以10为底的对数"),
    Static(L"求余数", L"_db", kXY, Math_Fmod, L"求数值x除以数值y的余数"),
    Static(L"求次方", L"_db", kXY, Math_Pow, L"求数值x的数值y次方"),
    Static(L"取随机数", L"_i", Math_Rand, L"取一个随机整数"),
    Static(L"求正弦", L"_db", kXSin, Math_Sin, L"求正弦值"),
    Static(L"求双曲正弦", L"_db", kX, Math_Sinh, L"求双曲正弦值"),
    Static(L"求平方根", L"_db", kX, Math_Sqrt, L"求平方根"),
    Static(L"置随机数种子", L"", Math_Srand, L"以当前时间设置随机数种子"),
    Static(L"求正切", L"_db", kX, Math_Tan, L"求正切值"),
    Static(L"求双曲正切", L"_db", kX, Math_Tanh, L"求双曲正切值"),
};
static_assert(sizeof(kMethods) / sizeof(kMethods[0]) == 28);

// No element table: the class has no data, and so the descriptor walk over
// an object's classes never lists these methods.
ZEL_RECORD(tagTBaseTypeInfo, g_info_Math) =
    ClassRecord(L"工具.数学运算", L"本类提供了常用的数学计算函数", kMethods, nullptr);
ZEL_REGISTER_CLASS(g_info_Math);
