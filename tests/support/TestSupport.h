#pragma once

#include "LYRComponentModel.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

using Dictionary = LYRSysTSDictionary;
using Record = LYRSysTSInfoDic;

inline const std::string kRefused = "Problem allocating structure dico\n";

inline GUID G(std::uint32_t data1, std::uint16_t data2 = 0, std::uint16_t data3 = 0,
              std::array<std::uint8_t, 8> data4 = {}) {
    GUID guid{data1, data2, data3, {}};
    std::memcpy(guid.Data4, data4.data(), data4.size());
    return guid;
}

/// Ids that differ in their last two bytes alone.
inline GUID IdWithEnd(unsigned number) {
    GUID id = G(7);
    std::memcpy(id.Data4 + 6, &number, 2);
    return id;
}

/// A creator that can be told from others and is never called.
inline LYRSysTSInterfaceFactory Creator(std::uintptr_t number) {
    return reinterpret_cast<LYRSysTSInterfaceFactory>(number);
}

/// What `action` writes on standard error.
template <typename Action>
std::string ErrorsOf(Action action) {
    testing::internal::CaptureStderr();
    action();
    return testing::internal::GetCapturedStderr();
}

/// Checks that `action` writes these errors and no others.
template <typename Action>
void ExpectErrors(const std::string& errors, Action action) {
    EXPECT_EQ(ErrorsOf(action), errors);
}

inline std::string TextOf(const char* text) {
    return text == nullptr ? "(null)" : text;
}

inline Record* Add(const char* className, const char* interfaceName, const char* library = nullptr,
                   const char* leaf = nullptr, const char* extension = nullptr,
                   LYRSysTSInterfaceFactory creator = nullptr, Record* info = nullptr) {
    return Dictionary::AddDictionaryTS(className, interfaceName, library, leaf, extension, creator,
                                       info);
}

/// The entry of the class for the interface "I", or by ids; and the former's library, leaf and
/// extension.
inline Record* Find(const char* className) {
    return Dictionary::QueryDictionary(className, "I", 0);
}
inline Record* Find(const GUID& clsid, const GUID& iid) {
    return Dictionary::QueryDictionary(clsid, iid, 0);
}
inline std::string Entry(const char* className) {
    const Record* info = Find(className);
    if (info == nullptr) return "none";
    return TextOf(info->sharedLibrary) + " " + TextOf(info->itfLeaf) + " " +
           TextOf(info->extendedBy);
}

/// A directory of its own, gone at the end of the test.
class TempDirectory {
public:
    TempDirectory() {
        path = ::mkdtemp((std::filesystem::temp_directory_path() / "lyrXXXXXX").string().data());
    }
    ~TempDirectory() { std::filesystem::remove_all(path); }
    TempDirectory(const TempDirectory&) = delete;
    TempDirectory& operator=(const TempDirectory&) = delete;

    /// Writes the file and returns its path.
    std::string Write(const std::string& name, const std::string& text) const {
        std::ofstream(path + "/" + name, std::ios::binary) << text;
        return path + "/" + name;
    }

    std::string path;
};

/// Names the directories whose dictionary files the first request for them reads.
inline void UseDictionaryPath(const std::string& path) {
    ::unsetenv("LYRDictionaryNoPathNoFallback");
    ::setenv("LYRDictionaryPath", path.c_str(), 1);
}

/// Checks that `add` is refused with one message and leaves all eight fields of `record` alone.
template <typename Action>
void ExpectRefused(const Record& record, Action add) {
    const std::string before(reinterpret_cast<const char*>(&record), sizeof record);
    ExpectErrors(kRefused, [&] { EXPECT_EQ(add(), nullptr); });
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(&record), sizeof record), before);
}
