// Whole dictionary files, as the scan reads them, beside a model of the rules. The input is text:
//
//   012,.            the path: directories 0 to 2, "," an empty entry, anything else a missing one;
//                    with "!", LYRDictionaryPath is not set; with "?", the scan is forbidden
//   @0point.dicts    a file in directory 0 (4 to 6: a dangling link, 8 and more: a directory) ...
//   Point IPoint A   ... and what it holds, to the next "@"; "`x" stands for 1000 times "x"
#include "DictionaryModel.h"
#include "LYRComponentModel.h"

#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <string_view>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using Directories = std::array<Directory, 3>;

/// Where the three directories are on the disk; gone at the end.
const struct Root {
    Root() {
        for (const char* name : {"0", "1", "2"}) fs::create_directory(path + "/" + name);
    }
    ~Root() { fs::remove_all(path); }
    std::string path = mkdtemp((fs::temp_directory_path() / "lyr.; XXXXXX").string().data());
} root;

constexpr auto kNoPath = "Error in reading dictionaries : LYRDictionaryPath is not defined.\n";

constexpr LYRSysTSInterfaceFactory kCreator = [](LYRSysTSBaseUnknown*, unsigned char) -> IUnknown* {
    return nullptr;
};

template <typename Value>
Value* Symbol(const char* name) {
    return static_cast<Value*>(dlsym(RTLD_DEFAULT, name));
}

/// The flag that the files have been read. It has no name for the loader, but one in the library's
/// own table of symbols.
std::atomic<bool>* ScannedFlag() {
    Dl_info library;
    dladdr(Symbol<void>("_ZN18LYRSysTSDictionary10_dicByNameE"), &library);
    const std::string list = "nm '" + std::string(library.dli_fname) + "'";
    std::FILE* const found = popen((list + " | grep E21DictionaryInitialized$").c_str(), "r");
    std::uintptr_t offset = 0;
    Require(std::fscanf(found, "%lx", &offset) == 1 && pclose(found) == 0);
    return reinterpret_cast<std::atomic<bool>*>(static_cast<char*>(library.dli_fbase) + offset);
}

/// Sets the library back to where it was before its first use. Two flags are one-way, and are
/// turned back by hand once everything is cleaned up.
void StartAnew() {
    static auto* const deleted =
        Symbol<std::atomic<bool>>("_ZN18LYRSysTSDictionary18_DictionaryDeletedE");
    static auto* const scanned = ScannedFlag();
    LYRSysTSDictionary::_DeleteDictionary();
    LYRSysTSDicoIIDName::_FreeDictionary();
    LYRSysTSDicoCLSIDName::_FreeDictionary();
    LYRSysTSDicoGUID::_FreeDictionary();
    LYRSysTSDicoString::_FreeDictionary();
    *deleted = *scanned = false;
}

std::string PathOf(std::size_t directory) {
    return root.path + "/" + std::to_string(directory);
}

std::string Expand(const std::string& text) {
    std::string expanded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isMany = text[i] == '`' && i + 1 < text.size();
        expanded.append(isMany ? 1000 : 1, text[isMany ? ++i : i]);
    }
    return expanded;
}

/// Puts a file of the input into its directory and on the disk, unless there is one of its name.
void AddFile(const std::string& part, Directories& directories) {
    std::istringstream input(part);
    const int place = input.get();
    std::string name, text;
    std::getline(std::getline(input, name), text, '@');
    const bool isName = name.find_first_of(std::string_view("/\0", 2)) == std::string::npos;
    if ((place & 3) == 3 || !isName || name.empty() || name.size() > 60) return;
    const auto number = static_cast<std::size_t>(place & 3);
    const fs::path path = PathOf(number) + "/" + name;
    if (fs::is_symlink(path) || fs::exists(path)) return;

    File& file = directories[number][name];
    if ((place & 8) != 0) {
        file.kind = File::kDirectory;
        fs::create_directory(path);
    } else if ((place & 4) != 0) {
        file.kind = File::kDanglingLink;
        fs::create_symlink("nowhere", path);
    } else {
        file.text = Expand(text);
        std::ofstream(path, std::ios::binary) << file.text;
    }
}

/// What `action` writes on the standard error stream; the sanitizers do not write there.
template <typename Action>
std::string ErrorsOf(Action action) {
    char* text = nullptr;
    std::size_t size = 0;
    std::FILE* const usual = std::exchange(stderr, open_memstream(&text, &size));
    action();
    std::fclose(std::exchange(stderr, usual));
    return std::unique_ptr<char, decltype(&std::free)>(text, &std::free).get();
}

template <typename Link, typename Visit>
void Walk(const char* symbol, int buckets, Visit visit) {
    Link* const* const heads = Symbol<Link*>(symbol);
    for (int i = 0; i < buckets; ++i) {
        for (const Link* link = heads[i]; link != nullptr; link = link->next) visit(*link);
    }
}

Text TextOf(const char* text) {
    return text != nullptr ? Text(text) : std::nullopt;
}

std::string BytesOf(const GUID& id) {
    return {reinterpret_cast<const char*>(&id), sizeof id};
}

int FreeFile() {
    const int file = dup(0);
    close(file);
    return file;
}

/// All that the tables hold, each of it once and found by the queries too.
Facts Collect(const LYRSysTSInfoDic* code, short load) {
    Facts facts;
    const auto add = [&](const std::vector<std::string>& key, const Fields& fields) {
        Require(facts.try_emplace(key, fields).second);
    };
    Walk<DicEntryLink>("_ZN18LYRSysTSDictionary10_dicByNameE", 4096, [&](const auto& link) {
        const auto& [clsid, iid, name, itf, library, leaf, extension, creator] = *link.info;
        Require(LYRSysTSDictionary::QueryDictionary(name, itf, load) == link.info);
        Require(LYRSysTSDicoString::AddStringInDico(itf) == itf);
        Require(!clsid && !iid && creator == (link.info == code ? kCreator : nullptr));
        add({"entry", name, itf}, {TextOf(library), TextOf(leaf), TextOf(extension)});
    });
    Walk<IIDNameLink>("_ZN19LYRSysTSDicoIIDName13_IIDNameByIIDE", 1024, [&](const auto& link) {
        const auto& [iid, name] = *link.record;
        Require(LYRSysTSDictionary::GetInterfaceName(*iid) == name);
        add({"iid", BytesOf(*iid)}, {name});
    });
    Walk<IIDNameLink>("_ZN19LYRSysTSDicoIIDName14_IIDNameByNameE", 1024, [&](const auto& link) {
        const auto& [iid, name] = *link.record;
        Require(LYRSysTSDicoIIDName::QueryDicoIIDNameByName(name) == iid);
        add({"interface", name}, {BytesOf(*iid)});
    });
    const auto* const byClass = "_ZN21LYRSysTSDicoCLSIDName17_CLSIDNameByCLSIDE";
    Walk<CLSIDNameLink>(byClass, 1024, [&](const auto& link) {
        const auto& [clsid, name, library] = *link.record;
        Require(LYRSysTSDicoCLSIDName::QueryDicoCLSIDNameByCLSID(*clsid) == link.record);
        add({"class", BytesOf(*clsid)}, {name, TextOf(library)});
    });
    Walk<DicEntryLink>("_ZN18LYRSysTSDictionary10_dicByGUIDE", 4096, [](auto&) { std::abort(); });
    return facts;
}

/// One scan of what is on the disk, from a new start, set off by one or the other request.
DictionaryModel Scan(bool isAllowed, void (*request)()) {
    const auto* const code = LYRSysTSDictionary::AddDictionaryTS("Code", "ICode", "libA", nullptr,
                                                                 nullptr, kCreator, nullptr);
    const int freeFile = FreeFile();
    DictionaryModel found;
    found.messages = ErrorsOf([&] {
        request();
        found.facts = Collect(code, isAllowed ? 1 : 0);
    });
    Require(FreeFile() == freeFile);  // nothing is left open
    StartAnew();
    return found;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size) {
    std::istringstream input(std::string(data, size));
    std::string head, part;
    std::getline(input, head, '@');
    Directories directories;
    while (std::getline(input, part, '@')) AddFile(part, directories);

    std::vector<std::pair<std::string, const Directory*>> path;
    std::string variable = "LYRDictionaryPath=";
    for (const char c : head.substr(0, 9)) {
        const auto number = static_cast<std::size_t>(c - '0');
        if (number < 3) path.emplace_back(PathOf(number), &directories[number]);
        variable += (number < 3 ? PathOf(number) : c == ',' ? "" : "/nowhere") + ":";
    }
    const bool isSet = head.find('!') == std::string::npos;
    const bool isAllowed = isSet && head.find('?') == std::string::npos;
    if (isSet) putenv(variable.data());
    if (isSet && !isAllowed) setenv("LYRDictionaryNoPathNoFallback", "", 1);

    DictionaryModel model{{{{"entry", "Code", "ICode"}, {"A"}}}, kNoPath};
    if (isAllowed) model.Scan(path);
    // The same files give the same dictionary, whatever has them read.
    void (*const requests[])() = {LYRSysTSDictionary::EnsureInitDictionary,
                                  [] { LYRSysTSDicoCLSIDName::QueryDicoCLSIDNameByCLSID({}); }};
    for (const auto request : requests) {
        const DictionaryModel found = Scan(isAllowed, request);
        const bool sameMessages = found.messages == model.messages;
        if (!sameMessages) std::cerr << found.messages << "-- and not\n" << model.messages;
        Require(sameMessages && found.facts == model.facts);
    }

    unsetenv("LYRDictionaryPath");
    unsetenv("LYRDictionaryNoPathNoFallback");
    for (std::size_t i = 0; i < 3; ++i) {
        for (const auto& entry : directories[i]) fs::remove(PathOf(i) + "/" + entry.first);
    }
    return 0;
}
