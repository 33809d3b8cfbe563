#pragma once

/// Which allocations of this process fail. They are those of the executable and of every library,
/// by malloc and its kin and by operator new. Armed while the process has one thread.
struct Failures {
    int next;         ///< as many allocations from now; 0 for none
    bool fromThenOn;  ///< and so do all that follow
    int failed;       ///< so many have
};
extern Failures failures;
