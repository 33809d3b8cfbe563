#pragma once

/// Marks what a shared library offers to others; everything else stays hidden.
#define LYR_EXPORT __attribute__((visibility("default")))

/// Keeps a member of an exported class inside its library.
#define LYR_LOCAL __attribute__((visibility("hidden")))
