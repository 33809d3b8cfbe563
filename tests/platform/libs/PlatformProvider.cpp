#define API __attribute__((visibility("default")))

extern "C" API int PlatformProvided() {
    return 7;
}
