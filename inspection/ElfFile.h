#pragma once

#include <cstddef>
#include <cstdint>
#include <gelf.h>
#include <memory>
#include <string>
#include <string_view>

namespace lyr::inspection {

/// Why a file cannot be read as what it should be.
struct Unreadable {
    std::string reason;
};

/// What a file's code is for.
struct Processor {
    unsigned machine = EM_NONE;
    unsigned elfClass = ELFCLASSNONE;
    unsigned order = ELFDATANONE;

    bool operator==(const Processor&) const = default;
};

/// The processor's name for people, "x86-64" or "machine 8".
std::string NameOf(const Processor& processor);

/// An ELF file of any processor, open and read piece by piece: whatever stands in its headers,
/// nothing outside the file and nothing of more than a quarter of a gigabyte is read, and the file
/// may be cut short meanwhile. All members throw Unreadable.
class ElfFile {
public:
    explicit ElfFile(const std::string& path);
    ~ElfFile();
    ElfFile(const ElfFile&) = delete;
    ElfFile& operator=(const ElfFile&) = delete;

    const GElf_Ehdr& Header() const { return _header; }
    Processor For() const;
    std::uint64_t Size() const { return _size; }

    std::size_t CountSegments() const;
    GElf_Phdr Segment(std::size_t index) const;

    /// What stands in that part of the file, its numbers in the order of this machine.
    Elf_Data* Part(std::uint64_t offset, std::uint64_t size, Elf_Type type) const;

    /// 0 for a file without sections.
    std::size_t CountSections() const;
    Elf_Scn* NextSection(Elf_Scn* section) const;
    static GElf_Shdr HeaderOf(Elf_Scn* section);
    std::string_view NameOfSection(Elf_Scn* section) const;
    /// A section's content; without bytes for one that has none in the file.
    static Elf_Data* ContentOf(Elf_Scn* section);
    /// A text of the section of that number.
    std::string_view TextAt(std::size_t section, std::size_t offset) const;

private:
    struct EndElf {
        void operator()(Elf* elf) const { ::elf_end(elf); }
    };

    void Open();

    int _file;
    std::unique_ptr<Elf, EndElf> _elf;
    GElf_Ehdr _header{};
    std::uint64_t _size = 0;
    std::size_t _sectionNames = 0;
};

}  // namespace lyr::inspection
