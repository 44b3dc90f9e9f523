// Leaks that the leak checker is to pass over in the test programs.

// fontconfig's parser loses some 300 bytes once, when it reads the system's configuration.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig\n"; }
