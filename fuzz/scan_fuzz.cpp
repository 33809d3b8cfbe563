// Whole dictionary files, as the scan reads them, beside a model of the rules. The input is text:
//
//   0point.dicts     a file in directory 0 (to 2) ...
//   Point IPoint A   ... and what it holds, to the next "@"
//   @1point.dicts    a name alone is a link: to nowhere in directory 0, elsewhere to a directory
//
// The path: a directory that does not exist, an empty entry, and the three directories.
#include "DictionaryModel.h"
#include "LYRComponentModel.h"
#include "Tables.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string_view>
#include <unistd.h>

namespace fs = std::filesystem;

/// The files of an input on the disk, while it lives.
struct Disk {
    Disk() {
        for (const char* place : {"0", "1", "2"}) fs::create_directory(root + place);
        const std::string path = root + "3::" + root + "0:" + root + "1:" + root + "2";
        setenv("LYRDictionaryPath", path.c_str(), 1);
    }
    ~Disk() { fs::remove_all(root); }

    void Add(const std::string& part) {
        if (part.find_first_of("012") != 0) return;
        const auto end = std::min(part.find_first_of(std::string_view("\n/\0", 3)), part.size());
        const std::string name = part.substr(0, 1) + "/" + part.substr(1, end - 1),
                          path = root + name;
        if (end < part.size()) {
            const std::string text = part.substr(end + 1);
            if (std::ofstream(path, std::ios::binary) << text) files[name] = text;
        } else if (::symlink(part[0] == '0' ? "/no/where" : "/", path.c_str()) == 0) {
            files[name] = std::nullopt;
        }
    }

    std::string root =
        mkdtemp((fs::temp_directory_path() / "lyr.; XXXXXX").string().data()) + std::string("/");
    Files files;
};

/// A flag of the library. Not all have a name for the loader, but one in the library's own table of
/// symbols, where link-time optimisation puts an ending behind it.
static std::atomic<bool>& Flag(const std::string& name) {
    Dl_info library;
    dladdr(dlsym(RTLD_DEFAULT, kEntriesByName), &library);
    const std::string list = "nm '" + std::string(library.dli_fname) + "' | grep -E '" + name +
                             "(\\.lto_priv\\.[0-9]+)?$'";
    std::FILE* const found = popen(list.c_str(), "r");
    std::uintptr_t offset = 0;
    Require(std::fscanf(found, "%lx", &offset) == 1 && pclose(found) == 0);
    return *reinterpret_cast<std::atomic<bool>*>(static_cast<char*>(library.dli_fbase) + offset);
}

/// Sets the library back to where it was before its first use. Two flags are one-way, and are
/// turned back by hand once everything is cleaned up.
static void StartAnew() {
    static auto &deleted = Flag("_DictionaryDeletedE"), &scanned = Flag("DictionaryInitializedE");
    LYRSysTSDictionary::_DeleteDictionary();
    LYRSysTSDicoIIDName::_FreeDictionary();
    LYRSysTSDicoCLSIDName::_FreeDictionary();
    LYRSysTSDicoGUID::_FreeDictionary();
    LYRSysTSDicoString::_FreeDictionary();
    deleted = scanned = false;
}

static Text TextOf(const char* text) {
    return text != nullptr ? Text(text) : std::nullopt;
}

static std::string BytesOf(const GUID* id) {
    return {reinterpret_cast<const char*>(id), sizeof *id};
}

/// All that the tables hold, each of it once, and the entries found by the query too.
static Facts Collect() {
    Facts facts;
    const auto addEntry = [&](int, const DicEntryLink& link) {
        const auto& [clsid, iid, name, itf, library, leaf, extension, creator] = *link.info;
        Require(LYRSysTSDictionary::QueryDictionary(name, itf, 1) == link.info && !clsid && !iid);
        facts[{"entry", name, itf}] = {TextOf(library), TextOf(leaf), TextOf(extension)};
    };
    const auto addIid = [&](int, const IIDNameLink& link) {
        facts[{"iid", BytesOf(link.record->iid)}] = {link.record->interfaceName};
    };
    const auto addInterface = [&](int, const IIDNameLink& link) {
        facts[{"interface", link.record->interfaceName}] = {BytesOf(link.record->iid)};
    };
    const auto addClass = [&](int, const CLSIDNameLink& link) {
        const auto& [clsid, name, library] = *link.record;
        facts[{"class", BytesOf(clsid)}] = {name, TextOf(library)};
    };
    const std::size_t count = Walk<DicEntryLink>(kEntriesByName, addEntry) +
                              Walk<IIDNameLink>(kInterfacesById, addIid, 1024) +
                              Walk<IIDNameLink>(kInterfacesByName, addInterface, 1024) +
                              Walk<CLSIDNameLink>(kClassesById, addClass, 1024);
    Require(count == facts.size());
    return facts;
}

/// What is said on the standard error stream when the files are first asked for, and, before that,
/// when it is forbidden. The sanitizers do not write there.
static std::string ErrorsOfScan() {
    static char* text = nullptr;
    static std::size_t size = 0;
    static std::FILE* const errors = stderr = open_memstream(&text, &size);
    std::rewind(errors);
    setenv("LYRDictionaryNoPathNoFallback", "", 1);
    LYRSysTSDicoCLSIDName::QueryDicoCLSIDNameByCLSID({});
    unsetenv("LYRDictionaryNoPathNoFallback");
    LYRSysTSDicoCLSIDName::QueryDicoCLSIDNameByCLSID({});
    std::fflush(errors);
    return {text, size};
}

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size) {
    Disk disk;
    std::istringstream input(std::string(data, size));
    for (std::string part; std::getline(input, part, '@');) disk.Add(part);
    Facts facts;
    const std::string expected =
        "Error in reading dictionaries : LYRDictionaryPath is not defined.\n" +
        ReadFiles(facts, disk.root, disk.files);
    const std::string messages = ErrorsOfScan();
    if (messages != expected) std::cerr << messages << "-- and not\n" << expected;
    Require(messages == expected && Collect() == facts);
    StartAnew();
    const int file = ::dup(0);
    static const int firstFile = file;
    Require(::close(file) == 0 && file == firstFile);  // none is left open
    return 0;
}
