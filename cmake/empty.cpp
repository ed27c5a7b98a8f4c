// The shared library is linked from the zel_core objects.
