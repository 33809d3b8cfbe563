#include "inspection/LibraryFile.h"

#include "inspection/ElfFile.h"

#include <algorithm>
#include <string_view>

namespace lyr::inspection {

namespace {

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

/// Calls `take` with each symbol that is defined in the section's table, and with its name. Names
/// that make more text than a sound file has end it: each could be as long as the file.
template <typename Take>
void ForEachDefinedSymbol(const ElfFile& file, Elf_Scn* section, Take take) {
    const GElf_Shdr header = ElfFile::HeaderOf(section);
    Elf_Data* const data = ElfFile::ContentOf(section);
    std::uint64_t left = (64U << 20U) + 8 * file.Size();
    GElf_Sym symbol;
    for (int i = 0; ::gelf_getsym(data, i, &symbol) != nullptr; ++i) {
        if (symbol.st_shndx == SHN_UNDEF) continue;
        const std::string_view name = file.TextAt(header.sh_link, symbol.st_name);
        if (name.size() > left) throw Unreadable{"is no library: its names have no end"};
        left -= name.size();
        take(symbol, name);
    }
}

void ReadSection(const ElfFile& file, Elf_Scn* section, LibraryFile& library) {
    const GElf_Word type = ElfFile::HeaderOf(section).sh_type;
    if (type == SHT_DYNSYM && library.exports.empty()) {
        ForEachDefinedSymbol(file, section, [&](const GElf_Sym& symbol, std::string_view text) {
            if (IsExported(symbol)) library.exports.emplace(text);
        });
    } else if (type == SHT_SYMTAB && library.isStripped) {
        library.isStripped = false;
        ForEachDefinedSymbol(file, section, [&](const GElf_Sym&, std::string_view text) {
            if (text.find("LYRSysTS") != std::string_view::npos) library.inside.emplace(text);
        });
    } else if (type != SHT_NOBITS && file.NameOfSection(section) == "lyr_manifest") {
        const Elf_Data* const data = ElfFile::ContentOf(section);
        if (data->d_buf == nullptr) return;
        AddRecords({static_cast<const char*>(data->d_buf), data->d_size}, library.records);
    }
}

LibraryFile ReadSections(const ElfFile& file, const std::string& path) {
    if (file.Header().e_type != ET_DYN) {
        throw Unreadable{"is an object file or a program, and no shared library"};
    }
    if (file.CountSections() == 0) {
        throw Unreadable{"has no sections: it is cut short, or all are stripped"};
    }
    LibraryFile library{path, {}, {}, {}, true};
    Elf_Scn* section = nullptr;
    while ((section = file.NextSection(section)) != nullptr) ReadSection(file, section, library);
    std::erase_if(library.inside, [&](const auto& name) { return library.exports.contains(name); });
    return library;
}

}  // namespace

std::optional<LibraryFile> ReadLibraryFile(const std::string& path, Findings& findings) {
    try {
        return ReadSections(ElfFile(path), path);
    } catch (const Unreadable& unreadable) {
        findings.AddError({path}, unreadable.reason, "unreadable");
        return std::nullopt;
    }
}

}  // namespace lyr::inspection
