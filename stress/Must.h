#pragma once

#include <cstdio>
#include <unistd.h>

// Ends the process, with the invariant in words, unless it holds.
#define MUST(...) Must((__VA_ARGS__), __FILE__, __LINE__, #__VA_ARGS__)

inline void Must(bool holds, const char* file, int line, const char* invariant) {
    if (holds) return;
    ::dprintf(STDOUT_FILENO, "%s:%d: violated: %s\n", file, line, invariant);
    ::_exit(1);
}
