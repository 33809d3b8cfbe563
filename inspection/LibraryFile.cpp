#include "inspection/LibraryFile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <gelf.h>
#include <memory>
#include <string_view>
#include <unistd.h>

namespace lyr::inspection {

namespace {

class OpenFile {
public:
    explicit OpenFile(const char* path) : _file(::open(path, O_RDONLY | O_CLOEXEC)) {}
    ~OpenFile() {
        if (_file >= 0) ::close(_file);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    int Number() const { return _file; }

private:
    int _file;
};

struct EndElf {
    void operator()(Elf* elf) const { ::elf_end(elf); }
};
using ElfHandle = std::unique_ptr<Elf, EndElf>;

/// Why a file cannot be read as a shared library; thrown and caught in this source alone.
struct Unreadable {
    std::string reason;
};

[[noreturn]] void FailWithElfsWords() {
    throw Unreadable{std::string("is no whole library: ") + ::elf_errmsg(-1)};
}

/// The bytes of a section; empty for one that has none in the file.
std::string_view BytesOf(Elf_Scn* section) {
    const Elf_Data* const data = ::elf_getdata(section, nullptr);
    if (data == nullptr) FailWithElfsWords();
    if (data->d_buf == nullptr) return {};
    return {static_cast<const char*>(data->d_buf), data->d_size};
}

GElf_Shdr HeaderOf(Elf_Scn* section) {
    GElf_Shdr header;
    if (::gelf_getshdr(section, &header) == nullptr) FailWithElfsWords();
    return header;
}

void AddRecords(std::string_view bytes, std::vector<std::string>& records) {
    while (!bytes.empty()) {
        const std::string_view record = bytes.substr(0, bytes.find('\0'));
        if (!record.empty()) records.emplace_back(record);
        bytes.remove_prefix(std::min(bytes.size(), record.size() + 1));
    }
}

bool IsExported(const GElf_Sym& symbol) {
    const auto visibility = GELF_ST_VISIBILITY(symbol.st_other);
    return GELF_ST_BIND(symbol.st_info) != STB_LOCAL &&
           (visibility == STV_DEFAULT || visibility == STV_PROTECTED);
}

/// Calls `take` with each symbol that is defined in the section's table, and with its name.
template <typename Take>
void ForEachDefinedSymbol(Elf* elf, Elf_Scn* section, Take take) {
    const GElf_Shdr header = HeaderOf(section);
    Elf_Data* const data = ::elf_getdata(section, nullptr);
    if (data == nullptr) FailWithElfsWords();
    GElf_Sym symbol;
    for (int i = 0; ::gelf_getsym(data, i, &symbol) != nullptr; ++i) {
        if (symbol.st_shndx == SHN_UNDEF) continue;
        const char* const name = ::elf_strptr(elf, header.sh_link, symbol.st_name);
        if (name == nullptr) FailWithElfsWords();
        take(symbol, std::string_view(name));
    }
}

void ReadSection(Elf* elf, Elf_Scn* section, std::string_view name, LibraryFile& library) {
    const GElf_Word type = HeaderOf(section).sh_type;
    if (type == SHT_DYNSYM) {
        ForEachDefinedSymbol(elf, section, [&](const GElf_Sym& symbol, std::string_view text) {
            if (IsExported(symbol)) library.exports.emplace(text);
        });
    } else if (type == SHT_SYMTAB) {
        library.isStripped = false;
        ForEachDefinedSymbol(elf, section, [&](const GElf_Sym&, std::string_view text) {
            if (text.find("LYRSysTS") != std::string_view::npos) library.inside.emplace(text);
        });
    } else if (name == "lyr_manifest" && type != SHT_NOBITS) {
        AddRecords(BytesOf(section), library.records);
    }
}

/// That the file holds a shared library, or else what it holds and what is wanted.
void RequireSharedLibrary(Elf* elf) {
    if (::elf_kind(elf) == ELF_K_AR) {
        throw Unreadable{"is a static library; component libraries are shared ones"};
    }
    GElf_Ehdr header;
    if (::elf_kind(elf) != ELF_K_ELF) throw Unreadable{"is no shared library"};
    if (::gelf_getehdr(elf, &header) == nullptr) FailWithElfsWords();
    if (header.e_type != ET_DYN) {
        throw Unreadable{"is an object file or a program, and no shared library"};
    }
    std::size_t sections = 0;
    if (::elf_getshdrnum(elf, &sections) != 0) FailWithElfsWords();
    if (sections == 0) throw Unreadable{"has no sections: it is cut short, or all are stripped"};
}

void ReadSections(Elf* elf, LibraryFile& library) {
    std::size_t names = 0;
    if (::elf_getshdrstrndx(elf, &names) != 0) FailWithElfsWords();
    Elf_Scn* section = nullptr;
    while ((section = ::elf_nextscn(elf, section)) != nullptr) {
        const char* const name = ::elf_strptr(elf, names, HeaderOf(section).sh_name);
        if (name == nullptr) FailWithElfsWords();
        ReadSection(elf, section, name, library);
    }
    std::erase_if(library.inside, [&](const auto& name) { return library.exports.contains(name); });
}

}  // namespace

std::optional<LibraryFile> ReadLibraryFile(const std::string& path, Findings& findings) {
    const OpenFile file(path.c_str());
    if (file.Number() < 0) {
        findings.AddError({path}, std::string("cannot be opened: ") + std::strerror(errno),
                          "unreadable");
        return std::nullopt;
    }
    try {
        ::elf_version(EV_CURRENT);
        const ElfHandle elf(::elf_begin(file.Number(), ELF_C_READ, nullptr));
        if (elf == nullptr) FailWithElfsWords();
        RequireSharedLibrary(elf.get());
        LibraryFile library{path, {}, {}, {}, true};
        ReadSections(elf.get(), library);
        return library;
    } catch (const Unreadable& unreadable) {
        findings.AddError({path}, unreadable.reason, "unreadable");
        return std::nullopt;
    }
}

}  // namespace lyr::inspection
