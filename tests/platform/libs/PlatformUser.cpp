#include "LYRThrLibraryManager.h"

#include <atomic>
#include <thread>

using Manager = LYRThrLibraryManager;

#define API __attribute__((visibility("default")))

extern "C" int PlatformProvided();
extern "C" API int PlatformAnswer() {
    return 6 * PlatformProvided();
}

// Another thread waits until the initialisers are done.
static std::atomic<bool> waits = true;
static const bool started =
    (std::thread([] { Manager::AwaitLoads(), waits = false; }).detach(), true);
extern "C" API const bool PlatformIsAwaited =
    (std::this_thread::sleep_for(std::chrono::milliseconds(50)), waits);

// A library's initialisers may ask for libraries, with and without success.
static void* const absent = Manager::LoadLibrary("PlatformAbsent");
extern "C" API void* const PlatformEarly =
    Manager::GetFunctionAddress("PlatformProvider", "PlatformProvided");
