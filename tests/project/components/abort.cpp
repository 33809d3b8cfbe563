#include <cstdlib>

// A library in a place where nothing may be loaded.
[[gnu::constructor]] static void Abort() {
    std::abort();
}
