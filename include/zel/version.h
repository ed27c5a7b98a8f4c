// The SDK's version. The build reads these three numbers: the package, the
// ncl tool and the library records all carry them.
#pragma once

#define ZEL_VERSION_MAJOR 1
#define ZEL_VERSION_MINOR 0
#define ZEL_VERSION_PATCH 0

#define ZEL_VERSION_TEXT_(a, b, c) #a "." #b "." #c
#define ZEL_VERSION_TEXT_OF_(a, b, c) ZEL_VERSION_TEXT_(a, b, c)
// "1.0.0"
#define ZEL_VERSION_STRING ZEL_VERSION_TEXT_OF_(ZEL_VERSION_MAJOR, ZEL_VERSION_MINOR, ZEL_VERSION_PATCH)

namespace zel {
// A library record holds its version as a double: major.minor written out as a
// decimal, so 1.0 for 1.0.x and 1.12 for 1.12.x.
constexpr double RecordVersion(int major, int minor) {
    double fraction = minor;
    while (fraction >= 1.0) fraction /= 10.0;
    return major + fraction;
}
}  // namespace zel

#define ZEL_VERSION_NUMBER (::zel::RecordVersion(ZEL_VERSION_MAJOR, ZEL_VERSION_MINOR))
