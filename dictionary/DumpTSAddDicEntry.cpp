#include "DumpTSAddDicEntry.h"

#include "LYRSysTSKnownIds.h"
#include "support/SharedField.h"
#include "support/Text.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <cstdio>

namespace {

constexpr char kRule[] =
    "\n______________________________________________________________________"
    "_______________________________________________________________";
constexpr char kThinRule[] = "----------------------";

using GuidText = std::array<char, 41>;

GuidText ToText(const GUID& guid) {
    GuidText text;
    const auto& d = guid.Data4;
    std::snprintf(text.data(), text.size(), "%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X",
                  guid.Data1, guid.Data2, guid.Data3, d[0], d[1], d[2], d[3], d[4], d[5], d[6],
                  d[7]);
    return text;
}

/// The name that a record gives to an id, or else the one that the id itself tells.
const char* NameOf(const char* recorded, const GUID& id) {
    if (recorded != nullptr) return recorded;
    return id == CLSID_LYRSysTSMetaClass ? "MetaObject" : nullptr;
}

/// Counts a call. A person who debugs sets ValueToStop to the number of a call and a breakpoint on
/// the assignment to it.
std::atomic<std::int32_t>& CountCall() {
    static std::atomic<std::int32_t> NbAddDic = 0;
    static std::atomic<std::int32_t> ValueToStop = 0;
    const std::int32_t number = ++NbAddDic;
    if (number == ValueToStop) ValueToStop = number;
    return NbAddDic;
}

}  // namespace

int DumpTSAddDicEntry(const GUID* clsid, const GUID* iid, const char* className,
                      const char* interfaceName, int key, LYRSysTSInterfaceFactory factory,
                      LYRSysTSInfoDic* info, const char* sharedLibrary) {
    const std::atomic<std::int32_t>& count = CountCall();
    const bool byName = !clsid && !iid && className && interfaceName;
    const bool byId = clsid && iid && !className && !interfaceName;
    if (!byName && !byId) return 0;
    std::fflush(stdout);
    std::fflush(stderr);

    GuidText clsidText{};
    GuidText iidText{};
    if (byId) {
        clsidText = ToText(*clsid);
        iidText = ToText(*iid);
        className = NameOf(info ? lyr::internal::LoadShared(info->className) : nullptr, *clsid);
        interfaceName =
            NameOf(info ? lyr::internal::LoadShared(info->interfaceName) : nullptr, *iid);
    }
    const auto* const function = reinterpret_cast<void*>(factory);

    std::puts(kRule);
    std::printf(byName ? "NewEntry_NAME_%-6d :" : "NewEntry_GUID_%-6d :", count.load());
    std::printf(" %s %s %s %s in_info:0x%p \n", lyr::internal::TextOrNull(className),
                lyr::internal::TextOrNull(interfaceName), byId ? clsidText.data() : "(null)",
                byId ? iidText.data() : "(null)", static_cast<void*>(info));
    std::puts(kThinRule);
    if (sharedLibrary != nullptr) {
        std::printf("Added_Value   : Crea:0x%p ShL:%s ", function, sharedLibrary);
    } else {
        std::printf("Added_Value   : Crea:0x%p", function);
    }
    std::printf(" Clef:%-5d\n", key);
    return 1;
}
