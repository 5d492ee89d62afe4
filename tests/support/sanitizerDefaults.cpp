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
