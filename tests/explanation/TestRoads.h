#pragma once

#include "TestSupport.h"
#include "lyr/explain.h"

using lyr::Cause;
using lyr::Explanation;
using Answer = lyr::Explanation::Answer;

inline GUID Iid(unsigned number) {
    return G(0xA0000000U + number);
}

inline LYRSysTSMetaClass* Class(const char* name, LYRSysTSTypeOfClass type,
                                LYRSysTSMetaClass* base = nullptr) {
    return LYRSysTSFindOrCreateMetaObject(name, type, nullptr, base, nullptr);
}

/// An object of any class.
struct Thing : LYRSysTSBaseUnknown {
    explicit Thing(LYRSysTSMetaClass* meta) : LYRSysTSBaseUnknown(1), metaObject(meta) {}
    LYRSysTSMetaClass* GetMetaObject() const override { return metaObject; }
    LYRSysTSMetaClass* const metaObject;
};

/// What the object answers to a request; what it gives is given back.
inline HRESULT Ask(IUnknown& object, const GUID& iid) {
    void* out = nullptr;
    const HRESULT result = object.QueryInterface(iid, &out);
    if (result == S_OK) static_cast<IUnknown*>(out)->Release();
    return result;
}

inline std::string RootOf(const Explanation& explanation) {
    if (explanation.root >= explanation.steps.size()) return "none";
    return lyr::CauseName(explanation.steps[explanation.root].cause);
}

inline bool Has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

/// The lines that call the ids Iid(0) to Iid(9) I0 to I9.
inline std::string NamesOfIds() {
    std::string lines;
    for (char i = '0'; i <= '9'; ++i) {
        lines += std::string("{A000000") + i + "-0000-0000-0000-000000000000} I" + i + "\n";
    }
    return lines;
}

/// Dictionary files of their own, in use: a name for each of the ids Iid(0) to Iid(9), "I0" to
/// "I9", and the lines of a.dicts.
struct Files : TempDirectory {
    explicit Files(const std::string& pairs) {
        Write("a.iidts", NamesOfIds());
        Write("a.dicts", pairs);
        UseDictionaryPath(path);
    }
    std::string Pairs() const { return path + "/a.dicts"; }
};
