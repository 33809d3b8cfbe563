#include "LYRThrLibraryManager.h"

#define API __attribute__((visibility("default")))

extern "C" int PlatformProvided();
extern "C" API int PlatformAnswer() {
    return 6 * PlatformProvided();
}

// A library's initialisers may ask for libraries, with and without success.
static void* const absent = LYRThrLibraryManager::LoadLibrary("PlatformAbsent");
extern "C" API void* const PlatformEarly =
    LYRThrLibraryManager::GetFunctionAddress("PlatformProvider", "PlatformProvided");
