// iconv(3) as the independent judge of UTF-8 and UTF-32.
#pragma once

#include <iconv.h>

#include <string>

#include "fuzz_input.h"

// Converts `in` from one encoding to another; false when iconv rejects it.
inline bool Iconv(const char* to, const char* from, const std::string& in, std::string& out) {
    iconv_t cd = iconv_open(to, from);
    FUZZ_CHECK(cd != reinterpret_cast<iconv_t>(-1));
    out.assign(in.size() * 4 + 16, '\0');
    char* src = const_cast<char*>(in.data());
    char* dst = out.data();
    size_t srcLeft = in.size(), dstLeft = out.size();
    bool ok = iconv(cd, &src, &srcLeft, &dst, &dstLeft) != static_cast<size_t>(-1) && srcLeft == 0;
    iconv_close(cd);
    out.resize(out.size() - dstLeft);
    return ok;
}
