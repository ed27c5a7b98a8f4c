// The content test behind 工具.二进制文件流's 取文件类型.
#pragma once

// True when [s, end) is legal UTF-8 by the Unicode reference rules (no
// overlongs, surrogates or code points past U+10FFFF; every sequence whole).
bool IsLegalUtf8(const unsigned char* s, const unsigned char* end);
