// A leak checker names a frame by the library that lies there at exit. The windowing system unloads
// the OpenGL driver before that, and the driver's leaks would be nobody's; so nothing is unloaded.
extern "C" int dlclose(void*) noexcept
{
    return 0;
}

// Freed memory is held back to catch its use. Tests that watch how much memory the game takes would
// see little else, if it were the usual 256 MB.
//
// The checker notes where a library's thread-local block lies when it is first asked for, and takes
// one that begins 16 bytes into a page for the work of an older C library, which put a header
// before it. Blocks of the checker's own allocator begin there too, now and then; it then takes a
// number for an address and falls over at the end of tests that all passed. It finds such blocks in
// each thread's table of them anyhow.
extern "C" const char* __asan_default_options()
{
    return "quarantine_size_mb=1:intercept_tls_get_addr=0";
}

// Where both sanitizers are built in; a list of tests gives each only one variable.
extern "C" const char* __ubsan_default_options()
{
    return "print_stacktrace=1";
}
