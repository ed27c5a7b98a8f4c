// Runtime values a unit test makes or is handed, freed when they go.
#pragma once

#include <zel/memory.h>
#include <zel/values.h>

// A text argument made by the test.
struct Text {
    unsigned char* handle;
    explicit Text(const wchar_t* s) : handle(MCloneZelText(const_cast<wchar_t*>(s))) {}
    ~Text() { zel_free(handle); }
    operator unsigned char*() const { return handle; }
};
// A text or byte set handed to the test.
struct Owned {
    unsigned char* p;
    ~Owned() { zel_free(p); }
};
