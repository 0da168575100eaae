// Linked into every fuzz target. fontconfig keeps its configuration in memory that
// only its own mapped cache files point to, which the leak checker does not scan;
// the text calls start fontconfig in the middle of an input, so libFuzzer's check
// after that input would take the configuration for a leak. The platform layer
// hands it back at exit (font_catalogue_native.cpp), where the sanitizer builds of
// the tests check it.
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig.so\n"; }
