#include "inspection/ElfFile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace lyr::inspection {

namespace {

constexpr std::uint64_t kMostRead = 256U << 20U;

[[noreturn]] void FailWithElfsWords() {
    throw Unreadable{std::string("is no whole library: ") + ::elf_errmsg(-1)};
}

void RequireSize(std::uint64_t size) {
    if (size > kMostRead) throw Unreadable{"is no library: a part of it is larger than 256 MB"};
}

}  // namespace

std::string NameOf(const Processor& processor) {
    const struct {
        unsigned machine;
        const char* name;
    } kNames[] = {{EM_X86_64, "x86-64"}, {EM_386, "x86"},       {EM_AARCH64, "AArch64"},
                  {EM_ARM, "ARM"},       {EM_PPC64, "PowerPC"}, {EM_PPC, "PowerPC"},
                  {EM_S390, "s390"},     {EM_RISCV, "RISC-V"},  {EM_MIPS, "MIPS"}};
    std::string text = "machine " + std::to_string(processor.machine);
    for (const auto& [machine, name] : kNames) {
        if (machine == processor.machine) text = name;
    }
    text += processor.elfClass == ELFCLASS32 ? ", 32 bits" : ", 64 bits";
    return processor.order == ELFDATA2MSB ? text + ", big-endian" : text;
}

// Not to be waited for, should it be a pipe.
ElfFile::ElfFile(const std::string& path)
    : _file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
    if (_file < 0) throw Unreadable{std::string("cannot be opened: ") + std::strerror(errno)};
    try {
        Open();
    } catch (...) {
        _elf.reset();
        ::close(_file);
        throw;
    }
}

ElfFile::~ElfFile() {
    _elf.reset();
    ::close(_file);
}

void ElfFile::Open() {
    struct stat status {};
    if (::fstat(_file, &status) != 0) throw Unreadable{std::strerror(errno)};
    if (S_ISDIR(status.st_mode)) throw Unreadable{"is a folder, and no shared library"};
    if (!S_ISREG(status.st_mode)) throw Unreadable{"is no regular file"};
    _size = static_cast<std::uint64_t>(status.st_size);
    ::elf_version(EV_CURRENT);
    _elf.reset(::elf_begin(_file, ELF_C_READ, nullptr));
    if (_elf == nullptr) FailWithElfsWords();
    if (::elf_kind(_elf.get()) == ELF_K_AR) {
        throw Unreadable{"is a static library; component libraries are shared ones"};
    }
    if (::elf_kind(_elf.get()) != ELF_K_ELF) throw Unreadable{"is no shared library"};
    if (::gelf_getehdr(_elf.get(), &_header) == nullptr) FailWithElfsWords();
    if (CountSections() != 0 && ::elf_getshdrstrndx(_elf.get(), &_sectionNames) != 0) {
        FailWithElfsWords();
    }
}

Processor ElfFile::For() const {
    return {_header.e_machine, _header.e_ident[EI_CLASS], _header.e_ident[EI_DATA]};
}

std::size_t ElfFile::CountSegments() const {
    std::size_t count = 0;
    if (::elf_getphdrnum(_elf.get(), &count) != 0) FailWithElfsWords();
    return count;
}

GElf_Phdr ElfFile::Segment(std::size_t index) const {
    GElf_Phdr header;
    if (::gelf_getphdr(_elf.get(), static_cast<int>(index), &header) == nullptr) {
        FailWithElfsWords();
    }
    return header;
}

Elf_Data* ElfFile::Part(std::uint64_t offset, std::uint64_t size, Elf_Type type) const {
    RequireSize(size);
    if (offset > _size || size > _size - offset) throw Unreadable{"is cut short"};
    Elf_Data* const data =
        ::elf_getdata_rawchunk(_elf.get(), static_cast<std::int64_t>(offset), size, type);
    if (data == nullptr) FailWithElfsWords();
    return data;
}

std::size_t ElfFile::CountSections() const {
    std::size_t count = 0;
    if (::elf_getshdrnum(_elf.get(), &count) != 0) FailWithElfsWords();
    return count;
}

Elf_Scn* ElfFile::NextSection(Elf_Scn* section) const {
    return ::elf_nextscn(_elf.get(), section);
}

GElf_Shdr ElfFile::HeaderOf(Elf_Scn* section) {
    GElf_Shdr header;
    if (::gelf_getshdr(section, &header) == nullptr) FailWithElfsWords();
    return header;
}

std::string_view ElfFile::NameOfSection(Elf_Scn* section) const {
    return TextAt(_sectionNames, HeaderOf(section).sh_name);
}

Elf_Data* ElfFile::ContentOf(Elf_Scn* section) {
    const GElf_Shdr header = HeaderOf(section);
    if (header.sh_type != SHT_NOBITS) RequireSize(header.sh_size);
    Elf_Data* const data = ::elf_getdata(section, nullptr);
    if (data == nullptr) FailWithElfsWords();
    return data;
}

std::string_view ElfFile::TextAt(std::size_t section, std::size_t offset) const {
    Elf_Scn* const texts = ::elf_getscn(_elf.get(), section);
    if (texts == nullptr) FailWithElfsWords();
    const GElf_Shdr header = HeaderOf(texts);
    RequireSize(header.sh_size);
    if ((header.sh_flags & SHF_COMPRESSED) != 0) throw Unreadable{"has compressed names"};
    const char* const text = ::elf_strptr(_elf.get(), section, offset);
    if (text == nullptr) FailWithElfsWords();
    return text;
}

}  // namespace lyr::inspection
