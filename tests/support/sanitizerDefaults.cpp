// Settings every test executable carries for the sanitizers and the software renderer, so a
// suite behaves the same from ctest, from the test script and when run by hand.
#include <cstdlib>

extern "C" {

// Allocations the system's GL driver, X and font libraries make once per process.
const char* __lsan_default_suppressions()
{
    return "leak:libGLX_mesa\n"
           "leak:libgallium\n"
           "leak:swrast_dri\n"
           "leak:libLLVM\n"
           "leak:libX11\n"
           "leak:libfontconfig\n"
           "leak:libexpat\n";
}

// The leak checker follows the blocks of dynamically loaded thread-local storage through
// __tls_get_addr; with the GL driver's modules its record of them can go stale, and its tracer
// then crashes at exit on a block that isn't there, after a test that passed. Without the
// interception it only misses what such storage holds, which is the driver's own.
const char* __asan_default_options()
{
    return "intercept_tls_get_addr=0";
}

const char* __ubsan_default_options()
{
    return "print_stacktrace=1:halt_on_error=1";
}

} // extern "C"

namespace {

// The software renderer draws on the test's own thread and keeps no shader cache, whose writer
// thread would otherwise still be waiting when the leak checker stops the process at exit (the
// checker's tracer has crashed on it now and then).
struct SingleThreadedRenderer {
    SingleThreadedRenderer()
    {
        setenv("LP_NUM_THREADS", "0", 0);
        setenv("MESA_SHADER_CACHE_DISABLE", "true", 0);
    }
} singleThreadedRenderer;

} // namespace
