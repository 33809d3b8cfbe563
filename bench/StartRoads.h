#pragma once

#include "HandMade.h"
#include "LYRComponentModel.h"
#include "StartSet.h"

#include <mutex>

namespace bench {

/// The library's road to an interface.
class OwnRoad {
public:
    class Object final : public LYRSysTSBaseUnknown {
    public:
        explicit Object(LYRSysTSMetaClass* metaObject)
            : LYRSysTSBaseUnknown(1), _metaObject(metaObject) {}
        LYRSysTSMetaClass* GetMetaObject() const override { return _metaObject; }

    private:
        LYRSysTSMetaClass* const _metaObject;
    };

    static Object* Make(const std::string& className, const GUID& clsid) {
        return new Object(LYRSysTSFindOrCreateMetaObject(className.c_str(), ImplementationClass,
                                                         &clsid, LYRSysTSBaseUnknown::MetaObject(),
                                                         nullptr));
    }
    static void Read() { LYRSysTSDictionary::EnsureInitDictionary(); }
    static bool Knows(const std::string& className, const std::string& interfaceName,
                      const GUID& iid, const GUID& clsid) {
        return LYRSysTSDictionary::QueryDictionary(className.c_str(), interfaceName.c_str(), 0) !=
                   nullptr &&
               LYRSysTSDicoIIDName::QueryDicoIIDNameByIID(iid) != nullptr &&
               LYRSysTSDicoCLSIDName::QueryDicoCLSIDNameByCLSID(clsid) != nullptr;
    }
    static void* Ask(Object& object, const GUID& iid) {
        void* answer = nullptr;
        object.QueryInterface(iid, &answer);
        return answer;
    }
};

/// The hand-made road. The files are read at the first request, as there.
class HandMadeRoad {
public:
    using Object = HandMade::Object;

    static Object* Make(const std::string& className, const GUID&) { return new Object(className); }
    void Read() {
        std::call_once(_isRead, [this] {
            const char* const path = std::getenv("LYRDictionaryPath");
            if (path != nullptr) _all.Read(path);
        });
    }
    bool Knows(const std::string& className, const std::string& interfaceName, const GUID& iid,
               const GUID& clsid) {
        return _all.Knows(className, interfaceName, iid, clsid);
    }
    void* Ask(Object& object, const GUID& iid) {
        Read();
        return _all.QueryInterface(object, iid);
    }

private:
    std::once_flag _isRead;
    HandMade _all;
};

/// First requests: each for an entry of the set, of an object of its own.
template <typename Road>
class FirstRequests {
public:
    FirstRequests(Road& road, const StartSet& set, const std::vector<std::size_t>& entries)
        : _road(road), _set(set), _ids(set.Ids()), _classNames(set.Classes()) {
        for (std::size_t i = 0; i < _classNames.size(); ++i) _classNames[i] = set.ClassName(i);
        for (const std::size_t number : entries) {
            const StartEntry entry(set, number);
            const GUID& clsid = _ids[set.Interfaces() + entry.classNumber];
            _entries.push_back(entry);
            _requests.push_back(
                {road.Make(_classNames[entry.classNumber], clsid), _ids[entry.interfaceNumber]});
        }
    }

    /// Makes those from `first` on, up to `last`.
    void Make(std::size_t first, std::size_t last) {
        for (std::size_t i = first; i < last; ++i) {
            Request& request = _requests[i];
            request.answer = _road.Ask(*request.object, request.iid);
        }
    }

    /// Whether each has been answered, once, by its own entry point with the object itself.
    bool AreAnswered() const {
        for (std::size_t i = 0; i < _requests.size(); ++i) {
            if (_requests[i].answer != _requests[i].object) return false;
            const unsigned char* const calls = Calls(_set.LibraryName(_entries[i].library));
            if (calls == nullptr || calls[_entries[i].entryPoint] != 1) return false;
        }
        return true;
    }

    std::size_t Count() const { return _requests.size(); }

private:
    struct Request {
        typename Road::Object* object;
        GUID iid;
        void* answer = nullptr;
    };

    static const unsigned char* Calls(const std::string& library) {
        void* const handle = ::dlopen((library + ".so").c_str(), RTLD_NOW | RTLD_NOLOAD);
        if (handle == nullptr) return nullptr;
        return static_cast<const unsigned char*>(::dlsym(handle, "lyrBenchCalls"));
    }

    Road& _road;
    const StartSet& _set;
    const std::vector<GUID> _ids;
    std::vector<std::string> _classNames;
    std::vector<StartEntry> _entries;
    std::vector<Request> _requests;
};

}  // namespace bench
