// Says "yes" when a process with these dictionaries has an answer: the entry point of a class and
// an interface, an object of a class by name (CLASS CreateInterface), or one by class id (ID). What
// is asked stands in the arguments.

#include "LYRComponentModel.h"

#include <cstdio>
#include <string_view>

// For libraries that expect something of the program.
extern "C" __attribute__((visibility("default"))) void OfTheProgram() {}

namespace {

bool AnswersByClassId(const char* text) {
    GUID clsid;
    void* object = nullptr;
    return LYRSysTSConvertStringToGUID(text, clsid) == 0 &&
           LYRSysTSCreateInstance(clsid, IID_IUnknown, &object) == S_OK;
}

bool AnswersByNames(const char* className, const char* interfaceName) {
    if (std::string_view(interfaceName) == "CreateInterface") {
        return LYRSysTSCreateExternalObject(className, nullptr, nullptr) != nullptr;
    }
    LYRSysTSDictionary::EnsureInitDictionary();
    const GUID* const iid = LYRSysTSDicoIIDName::QueryDicoIIDNameByName(interfaceName);
    LYRSysTSMetaClass* const asked =
        LYRSysTSFindOrCreateMetaObject(className, ImplementationClass, nullptr, nullptr, nullptr);
    return iid != nullptr &&
           asked->ToMetaClassBase()->QueryDerivationInterfaceFactory(*iid) != nullptr;
}

}  // namespace

int main(int count, char** words) {
    const bool answers =
        count == 2 ? AnswersByClassId(words[1]) : count == 3 && AnswersByNames(words[1], words[2]);
    std::puts(answers ? "yes" : "no");
}
