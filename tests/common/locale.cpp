// Tests print and convert Chinese text: run them in a UTF-8 locale whatever
// the environment says.
#include <clocale>

namespace {
struct Utf8Locale {
    Utf8Locale() {
        if (!std::setlocale(LC_ALL, "C.UTF-8")) std::setlocale(LC_ALL, "");
    }
} g_utf8Locale;
}  // namespace
