// A leak checker names a frame by the library that lies there at exit. The windowing system unloads
// the OpenGL driver before that, and the driver's leaks would be nobody's; so nothing is unloaded.
extern "C" int dlclose(void*) noexcept
{
    return 0;
}

// Freed memory is held back to catch its use. Tests that watch how much memory the game takes would
// see little else, if it were the usual 256 MB.
extern "C" const char* __asan_default_options()
{
    return "quarantine_size_mb=1";
}

// Where both sanitizers are built in; a list of tests gives each only one variable.
extern "C" const char* __ubsan_default_options()
{
    return "print_stacktrace=1";
}
