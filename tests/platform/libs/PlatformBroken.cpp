extern "C" int PlatformDefinedNowhere();
extern "C" __attribute__((visibility("default"))) int PlatformBroken() {
    return PlatformDefinedNowhere();
}
