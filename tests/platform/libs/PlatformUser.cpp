#include "LYRThrLibraryManager.h"

using Manager = LYRThrLibraryManager;

#define API __attribute__((visibility("default")))

extern "C" int PlatformProvided();
extern "C" API int PlatformAnswer() {
    return 6 * PlatformProvided();
}

// One that is chosen when it is looked up: what stands in the table chooses.
using Answer = int (*)();
extern "C" Answer PlatformChoose() {
    return &PlatformAnswer;
}
extern "C" API int PlatformChosen() __attribute__((ifunc("PlatformChoose")));

// A library's initialisers may ask for libraries, with and without success.
static void* const absent = Manager::LoadLibrary("PlatformAbsent");
extern "C" API void* const PlatformEarly =
    Manager::GetFunctionAddress("PlatformProvider", "PlatformProvided");

// Neither its own loads nor its own thread take this one for ended.
extern "C" API const bool PlatformIsLoading =
    Manager::MayHaveBeenLoadingSince(Manager::MarkLoads());
