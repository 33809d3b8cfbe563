#include "../metaclass/TestClasses.h"

TEST(Creation, ByIdHandsTheArgumentsOnAndByNameTheRegisteredFunctionComesFirst) {
    PartsFiles files;
    for (int i = 1; i < 5; ++i) {
        const GUID clsid = Id(i);
        void* out = nullptr;
        EXPECT_EQ(LYRSysTSCreateInstance(clsid, G(7), &out), i == 1 ? 7 : E_FAIL) << i;
        EXPECT_EQ(out, i == 1 ? const_cast<GUID*>(&clsid) : nullptr) << i;
    }
    const auto create = [&](const char* name, const char* library) {
        return LYRSysTSCreateExternalObject(name, library, &files) == &files;
    };
    EXPECT_TRUE(create("Thing", nullptr));
    EXPECT_FALSE(create("Thing", "LyrNoSuchLibrary") || create("Unknown", nullptr));
    EXPECT_FALSE(create("Unknown", "LyrTestParts") || create(nullptr, "LyrTestParts"));
    void* make = LYRThrLibraryManager::GetFunctionAddress("LyrTestParts", "fctLYRSysTSCreateThing");
    Add("Other", "CreateInterface", nullptr, nullptr, nullptr, reinterpret_cast<Factory>(make));
    EXPECT_TRUE(create("Other", "LyrNoSuchLibrary"));
}
