// Linked into programs that run a real OpenGL driver under the thread sanitizer: what it reports from inside
// the driver, which was not built for it, is not ours to mend.
extern "C" const char* __tsan_default_suppressions();
extern "C" const char* __tsan_default_suppressions() {
    return "race:swrast_dri.so\n";
}
