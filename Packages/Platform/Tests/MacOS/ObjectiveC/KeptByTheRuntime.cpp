// Part of the tests' program, so that it may also be run by itself, as to list its tests.

// NOLINTNEXTLINE(bugprone-reserved-identifier): the leak checker looks for this name.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();

/// GNU's runtime frees no table of classes, and the fakes free no object and no block, on purpose.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libobjc.so\nleak:libBlocksRuntime.so\n";
}
