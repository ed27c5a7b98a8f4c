// Loads the library named on the command line and exits: the baseline of
// `ncl list` as a process.
#include <dlfcn.h>

#include <cstdio>

int main(int argc, char** argv) {
    if (argc < 2) return 2;
    void* library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        std::fprintf(stderr, "%s\n", dlerror());
        return 1;
    }
    return 0;
}
