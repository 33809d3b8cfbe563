#pragma once

#include "GUID.h"
#include "Maps.h"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>

namespace bench {

/// What an application would write for itself to get interfaces from libraries that dictionary
/// files name: maps, dlopen on demand, dlsym.
class HandMade {
public:
    /// What the files say of a class.
    struct Class {
        std::string name;
        std::string library;
    };

    /// An object of a class.
    class Object {
    public:
        explicit Object(const std::string& className) : _className(className) {}
        virtual ~Object() = default;
        const std::string& ClassName() const { return _className; }
        void AddRef() { _count.fetch_add(1, std::memory_order_relaxed); }

    private:
        const std::string& _className;
        std::atomic<std::uint32_t> _count = 1;
    };

    /// Reads the files in the directories that `path` lists between colons.
    void Read(std::string_view path) {
        while (!path.empty()) {
            const std::string_view directory = path.substr(0, path.find(':'));
            path.remove_prefix(std::min(path.size(), directory.size() + 1));
            for (const auto& file : std::filesystem::directory_iterator(directory)) {
                ReadFile(file.path());
            }
        }
    }

    void AddInterface(std::string_view id, std::string_view name) {
        _interfaces.emplace(IdFrom(id), name);
    }
    void AddClass(std::string_view id, std::string_view name, std::string_view library) {
        _classes.emplace(IdFrom(id), Class{std::string(name), std::string(library)});
    }

    /// The name of the interface, and what is known of the class; null for an unknown id.
    const std::string* FindInterface(const GUID& iid) {
        const std::lock_guard lock(_mutex);
        const auto found = _interfaces.find(iid);
        return found != _interfaces.end() ? &found->second : nullptr;
    }
    const Class* FindClass(const GUID& clsid) {
        const std::lock_guard lock(_mutex);
        const auto found = _classes.find(clsid);
        return found != _classes.end() ? &found->second : nullptr;
    }

    /// The interface of the object, with a count for the caller; null when it has none.
    void* QueryInterface(Object& object, const GUID& iid) {
        const Factory factory = FindFactory(object.ClassName(), iid);
        void* const answer = factory != nullptr ? factory(&object, 1) : nullptr;
        if (answer != nullptr) object.AddRef();
        return answer;
    }

    /// Whether the files name the pair and both ids.
    bool Knows(std::string_view className, std::string_view interfaceName, const GUID& iid,
               const GUID& clsid) {
        return _implementations.contains(NamePairView(className, interfaceName)) &&
               FindInterface(iid) != nullptr && FindClass(clsid) != nullptr;
    }

private:
    using Factory = void* (*)(void* object, unsigned char threadSafe);

    struct Implementation {
        std::string library;
        Factory factory = nullptr;  // once somebody has asked for it
    };
    struct IdHash {
        std::size_t operator()(const GUID& id) const {
            std::uint64_t halves[2];
            std::memcpy(halves, &id, sizeof halves);
            return halves[0] ^ halves[1];
        }
    };

    /// The next word of a line, of which the rest remains.
    static std::string_view CutWord(std::string_view& line) {
        const std::string_view word = line.substr(0, line.find(' '));
        line.remove_prefix(std::min(line.size(), word.size() + 1));
        return word;
    }

    template <typename Number>
    static Number FromHex(const char* digits) {
        std::uint64_t number = 0;
        std::from_chars(digits, digits + 2 * sizeof(Number), number, 16);
        return static_cast<Number>(number);
    }

    /// Of "{8-4-4-4-12}" digits.
    static GUID IdFrom(std::string_view text) {
        GUID id{};
        if (text.size() != 38) return id;
        id.Data1 = FromHex<std::uint32_t>(&text[1]);
        id.Data2 = FromHex<std::uint16_t>(&text[10]);
        id.Data3 = FromHex<std::uint16_t>(&text[15]);
        constexpr std::size_t kPlaces[] = {20, 22, 25, 27, 29, 31, 33, 35};
        for (std::size_t i = 0; i < std::size(kPlaces); ++i) {
            id.Data4[i] = FromHex<std::uint8_t>(&text[kPlaces[i]]);
        }
        return id;
    }

    void ReadFile(const std::filesystem::path& path) {
        const std::string kind = path.extension();
        std::FILE* const file = std::fopen(path.c_str(), "r");
        if (file == nullptr) return;
        char piece[2048];
        while (std::fgets(piece, sizeof piece, file) != nullptr) {
            if (piece[0] == '#') continue;
            std::string_view line(piece);
            if (line.ends_with('\n')) line.remove_suffix(1);
            const std::string_view first = CutWord(line);
            const std::string_view second = CutWord(line);
            const std::string_view third = CutWord(line);
            if (kind == ".dicts") {
                _implementations.emplace(NamePair(first, second),
                                         Implementation{std::string(third)});
            } else if (kind == ".iidts") {
                AddInterface(first, second);
            } else if (kind == ".clsidts") {
                AddClass(first, second, third);
            }
        }
        std::fclose(file);
    }

    /// No lock is held across a call of the loader, whose libraries may ask for something.
    Factory FindFactory(const std::string& className, const GUID& iid) {
        std::unique_lock lock(_mutex);
        const auto named = _interfaces.find(iid);
        if (named == _interfaces.end()) return nullptr;
        const std::string& interfaceName = named->second;
        const auto found = _implementations.find(NamePairView(className, interfaceName));
        if (found == _implementations.end()) return nullptr;
        Implementation& implementation = found->second;
        if (implementation.factory != nullptr) return implementation.factory;
        const auto loaded = _handles.find(implementation.library);
        void* handle = loaded != _handles.end() ? loaded->second : nullptr;
        lock.unlock();

        const bool isNew = handle == nullptr;
        if (isNew) {
            handle = ::dlopen((implementation.library + ".so").c_str(), RTLD_NOW | RTLD_LOCAL);
        }
        if (handle == nullptr) return nullptr;
        const std::string symbol = "LYRSysTSCreate" + interfaceName + className;
        const auto factory = reinterpret_cast<Factory>(::dlsym(handle, symbol.c_str()));

        lock.lock();
        if (isNew) _handles.emplace(implementation.library, handle);
        implementation.factory = factory;
        return factory;
    }

    std::mutex _mutex;
    std::unordered_map<NamePair, Implementation, StdHash, SameNames> _implementations;
    std::unordered_map<GUID, std::string, IdHash> _interfaces;
    std::unordered_map<GUID, Class, IdHash> _classes;
    std::unordered_map<std::string, void*> _handles;
};

}  // namespace bench
