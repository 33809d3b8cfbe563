#pragma once

namespace lyr::internal {

/// Priorities of the functions that make the process-wide locks while the library loads, lowest
/// first. Explicit, because link-time optimisation does not keep the order of the object files.
/// The first hundred belong to the compiler.
inline constexpr int kStartCLSIDMutex = 101;
inline constexpr int kStartGUIDMutex = 102;
inline constexpr int kStartIIDMutex = 103;
inline constexpr int kStartStringMutex = 104;
inline constexpr int kStartDicoMutex = 105;

}  // namespace lyr::internal
