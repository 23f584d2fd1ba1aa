// The entry of a fuzzer: hands each input to the one function that this program is built for.
#include "fuzz/targets.h"

#include <cstdio>
#include <cstdlib>

// Freed memory comes back after some inputs instead of hundreds: fresh pages would take much of a short run's time.
extern "C" const char* __asan_default_options()
{
    return "quarantine_size_mb=16:malloc_context_size=2";
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size)
{
    const std::string fault = KESTREL_FUZZ_FUNCTION(bytes, size);
    if (!fault.empty()) {
        std::fprintf(stderr, "fault: %s\n", fault.c_str());
        std::abort();
    }
    return 0;
}
