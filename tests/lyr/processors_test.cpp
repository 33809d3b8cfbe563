#include "Workshop.h"
#include "inspection/LibraryFile.h"

#include <fcntl.h>
#include <gelf.h>
#include <unistd.h>

namespace {

/// A shared library without code: sections, and symbols whose names begin at 1 and 10 of the names.
class ElfWriter {
public:
    ElfWriter(const std::string& path, int elfClass, int order)
        : _file(::open(path.c_str(), O_RDWR | O_CREAT, 0600)),
          _elf((::elf_version(EV_CURRENT), ::elf_begin(_file, ELF_C_WRITE, nullptr))) {
        ::gelf_newehdr(_elf, elfClass);
        GElf_Ehdr header;
        ::gelf_getehdr(_elf, &header);
        header.e_ident[EI_DATA] = static_cast<unsigned char>(order);
        header.e_type = ET_DYN;
        header.e_machine = order == ELFDATA2MSB ? EM_PPC : EM_AARCH64;
        header.e_version = EV_CURRENT;
        header.e_shstrndx = 1;
        ::gelf_update_ehdr(_elf, &header);
    }
    ~ElfWriter() {
        EXPECT_GT(::elf_update(_elf, ELF_C_WRITE), 0) << ::elf_errmsg(-1);
        ::elf_end(_elf);
        ::close(_file);
    }
    ElfWriter(const ElfWriter&) = delete;
    ElfWriter& operator=(const ElfWriter&) = delete;

    Elf_Data* AddSection(unsigned name, unsigned type, Elf_Type kind, void* bytes, size_t size) {
        Elf_Scn* const section = ::elf_newscn(_elf);
        GElf_Shdr header;
        ::gelf_getshdr(section, &header);
        header.sh_name = name;
        header.sh_type = type;
        header.sh_link = 1;
        header.sh_entsize = type == SHT_DYNSYM ? ::gelf_fsize(_elf, ELF_T_SYM, 1, EV_CURRENT) : 0;
        ::gelf_update_shdr(section, &header);
        Elf_Data* const data = ::elf_newdata(section);
        data->d_buf = bytes;
        data->d_size = size;
        data->d_type = kind;
        data->d_align = 1;
        data->d_version = EV_CURRENT;
        return data;
    }

    /// Symbol 1 is defined, symbol 2 is needed, symbol 3 is hidden; the bytes are the caller's.
    void AddSymbols(std::vector<char>& bytes) {
        bytes.resize(4 * ::gelf_fsize(_elf, ELF_T_SYM, 1, EV_CURRENT));
        Elf_Data* const data = AddSection(0, SHT_DYNSYM, ELF_T_SYM, bytes.data(), bytes.size());
        GElf_Sym symbol{1, GELF_ST_INFO(STB_GLOBAL, STT_FUNC), STV_DEFAULT, 2, 0, 0};
        ::gelf_update_sym(data, 1, &symbol);
        symbol = {10, symbol.st_info, STV_DEFAULT, SHN_UNDEF, 0, 0};
        ::gelf_update_sym(data, 2, &symbol);
        symbol = {10, symbol.st_info, STV_HIDDEN, 2, 0, 0};
        ::gelf_update_sym(data, 3, &symbol);
    }

private:
    int _file;
    Elf* _elf;
};

TEST(LibraryFile, IsReadForProcessorsOfEachSizeAndByteOrder) {
    char names[] = "\0exported\0withheld\0lyr_manifest";
    char records[] = "\0lyr1 class A - -\0\0lyr1 creatable A";
    for (const int elfClass : {ELFCLASS32, ELFCLASS64}) {
        for (const int order : {ELFDATA2LSB, ELFDATA2MSB}) {
            const TempDirectory folder;
            const std::string path = folder.path + "/libA.so";
            std::vector<char> symbols;
            {
                ElfWriter writer(path, elfClass, order);
                writer.AddSection(0, SHT_STRTAB, ELF_T_BYTE, names, sizeof names);
                writer.AddSection(19, SHT_PROGBITS, ELF_T_BYTE, records, sizeof records);
                writer.AddSymbols(symbols);
            }
            lyr::inspection::Findings findings;
            const auto library = lyr::inspection::ReadLibraryFile(path, findings);
            ASSERT_TRUE(library) << findings.Text();
            EXPECT_EQ(library->records,
                      (std::vector<std::string>{"lyr1 class A - -", "lyr1 creatable A"}));
            EXPECT_EQ(library->exports, std::unordered_set<std::string>{"exported"});
        }
    }
}

}  // namespace
