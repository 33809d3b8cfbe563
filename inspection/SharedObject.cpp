#include "inspection/SharedObject.h"

#include <algorithm>
#include <map>
#include <unordered_map>

namespace lyr::inspection {

namespace {

constexpr std::size_t kMostVersions = 0x8000;
constexpr unsigned kVersionIndex = 0x7fff;
constexpr unsigned kHiddenVersion = 0x8000;

[[noreturn]] void FailAsBroken(const char* what) {
    throw Unreadable{std::string("is no whole library: ") + what};
}

/// Bytes of the file with numbers in its own order.
class Bytes {
public:
    Bytes(std::string_view bytes, unsigned order) : _bytes(bytes), _order(order) {}

    std::size_t Size() const { return _bytes.size(); }
    unsigned Half(std::uint64_t at) const { return static_cast<unsigned>(Number(at, 2)); }
    std::uint32_t Word(std::uint64_t at) const { return static_cast<std::uint32_t>(Number(at, 4)); }

private:
    std::uint64_t Number(std::uint64_t at, std::size_t size) const {
        if (at > _bytes.size() || size > _bytes.size() - at) FailAsBroken("a table has no end");
        std::uint64_t number = 0;
        for (std::size_t i = 0; i < size; ++i) {
            const std::size_t next = _order == ELFDATA2MSB ? i : size - 1 - i;
            number = number << 8U | static_cast<unsigned char>(_bytes[at + next]);
        }
        return number;
    }

    std::string_view _bytes;
    unsigned _order;
};

/// A version that symbols of a file refer to by number.
struct Version {
    std::string_view name;
    bool isHidden = false;
};

class Reader {
public:
    explicit Reader(const std::string& path) : _file(path) { _object.path = path; }

    SharedObject Read() {
        _object.processor = _file.For();
        if (_file.Header().e_type != ET_DYN && _file.Header().e_type != ET_EXEC) {
            throw Unreadable{"is an object file, and no shared library"};
        }
        ReadSegments();
        if (_dynamic.p_type == PT_DYNAMIC) {
            ReadDynamic();
            ReadVersions();
            ReadSymbols();
        }
        _object.whyNotLoaded = WhyNotLoaded();
        return std::move(_object);
    }

private:
    using Tag = std::int64_t;

    void ReadSegments() {
        for (std::size_t i = 0; i < _file.CountSegments(); ++i) {
            const GElf_Phdr segment = _file.Segment(i);
            if (segment.p_type == PT_DYNAMIC) _dynamic = segment;
            if (segment.p_type != PT_LOAD) continue;
            const std::uint64_t end = segment.p_offset + segment.p_filesz;
            if (end < segment.p_offset || end > _file.Size()) throw Unreadable{"is cut short"};
            _loaded.push_back(segment);
        }
    }

    std::string WhyNotLoaded() const {
        if (_loaded.empty()) return "has nothing to load in it";
        if (_file.Header().e_type != ET_DYN || (Value(DT_FLAGS_1) & DF_1_PIE) != 0) {
            return "is a program, and no shared library";
        }
        if (_dynamic.p_type != PT_DYNAMIC) return "has no dynamic section";
        if ((Value(DT_FLAGS_1) & DF_1_NOOPEN) != 0) {
            return "forbids that it is loaded by programs (-z nodlopen)";
        }
        return {};
    }

    std::uint64_t Value(Tag tag) const {
        const auto found = _tags.find(tag);
        return found == _tags.end() ? 0 : found->second;
    }

    /// What the loader finds at the address, so many bytes, or as far as the file has them.
    Elf_Data* At(std::uint64_t address, std::uint64_t size, Elf_Type type, bool isWhole) const {
        for (const GElf_Phdr& segment : _loaded) {
            const std::uint64_t offset = address - segment.p_vaddr;
            if (address < segment.p_vaddr || offset >= segment.p_filesz) continue;
            const std::uint64_t left = segment.p_filesz - offset;
            if (size > left && isWhole) break;
            return _file.Part(segment.p_offset + offset, std::min(size, left), type);
        }
        FailAsBroken("an address leads out of it");
    }

    Bytes BytesFrom(std::uint64_t address) const {
        constexpr std::uint64_t kMost = 64U << 20U;
        const Elf_Data* const data = At(address, kMost, ELF_T_BYTE, false);
        return {{static_cast<const char*>(data->d_buf), data->d_size}, _object.processor.order};
    }

    std::string_view TextAt(std::uint64_t offset) {
        const std::string& texts = *_object.texts;
        if (offset >= texts.size()) FailAsBroken("a name leads out of it");
        const std::size_t end = texts.find('\0', offset);
        if (end == std::string::npos) FailAsBroken("a name has no end");
        // Each name could be as long as the file; a sound file has little more text than it is
        // long.
        _textRead += end - offset;
        if (_textRead > (64U << 20U) + 8 * texts.size()) FailAsBroken("its names have no end");
        return std::string_view(texts).substr(offset, end - offset);
    }

    void ReadDynamic() {
        Elf_Data* const data = _file.Part(_dynamic.p_offset, _dynamic.p_filesz, ELF_T_DYN);
        std::vector<std::uint64_t> needed;
        GElf_Dyn entry;
        for (int i = 0; ::gelf_getdyn(data, i, &entry) != nullptr && entry.d_tag != DT_NULL; ++i) {
            _tags.insert_or_assign(entry.d_tag, entry.d_un.d_val);
            if (entry.d_tag == DT_NEEDED) needed.push_back(entry.d_un.d_val);
        }
        const Elf_Data* const texts = At(Value(DT_STRTAB), Value(DT_STRSZ), ELF_T_BYTE, true);
        _object.texts =
            std::make_shared<std::string>(static_cast<const char*>(texts->d_buf), texts->d_size);
        for (const std::uint64_t offset : needed) _object.needed.push_back(TextAt(offset));
        if (_tags.contains(DT_SONAME)) _object.soname = TextAt(Value(DT_SONAME));
        if (_tags.contains(DT_RUNPATH)) {
            _object.runpath = TextAt(Value(DT_RUNPATH));
        } else if (_tags.contains(DT_RPATH)) {
            _object.rpath = TextAt(Value(DT_RPATH));
        }
        _object.hasNoDefaultFolders = (Value(DT_FLAGS_1) & DF_1_NODEFLIB) != 0;
    }

    void AddVersion(unsigned index, const Version& version) {
        if (_versions.size() >= kMostVersions) FailAsBroken("its versions have no end");
        _versions.insert_or_assign(index & kVersionIndex, version);
    }

    void ReadVersions() {
        _object.hasVersions = _tags.contains(DT_VERSYM);
        if (_tags.contains(DT_VERDEF)) ReadDefinedVersions(BytesFrom(Value(DT_VERDEF)));
        if (_tags.contains(DT_VERNEED)) ReadNeededVersions(BytesFrom(Value(DT_VERNEED)));
    }

    void ReadDefinedVersions(const Bytes& bytes) {
        std::uint64_t at = 0;
        for (std::uint64_t i = 0; i < Value(DT_VERDEFNUM); ++i) {
            const std::string_view name = TextAt(bytes.Word(at + bytes.Word(at + 12)));
            const bool isBase = (bytes.Half(at + 2) & VER_FLG_BASE) != 0;
            if (_object.versions.size() >= kMostVersions) FailAsBroken("its versions have no end");
            _object.versions.push_back(name);
            AddVersion(bytes.Half(at + 4), {isBase ? std::string_view() : name});
            if (bytes.Word(at + 16) == 0) return;
            at += bytes.Word(at + 16);
        }
    }

    void ReadNeededVersions(const Bytes& bytes) {
        std::uint64_t at = 0;
        for (std::uint64_t i = 0; i < Value(DT_VERNEEDNUM); ++i) {
            const std::string_view library = TextAt(bytes.Word(at + 4));
            std::uint64_t part = at + bytes.Word(at + 8);
            for (unsigned j = 0; j < bytes.Half(at + 2); ++j) {
                ReadNeededVersion(bytes, part, library);
                if (bytes.Word(part + 12) == 0) break;
                part += bytes.Word(part + 12);
            }
            if (bytes.Word(at + 12) == 0) return;
            at += bytes.Word(at + 12);
        }
    }

    void ReadNeededVersion(const Bytes& bytes, std::uint64_t at, std::string_view library) {
        const std::string_view name = TextAt(bytes.Word(at + 8));
        const unsigned index = bytes.Half(at + 6);
        const bool isWeak = (bytes.Half(at + 4) & VER_FLG_WEAK) != 0;
        if (_object.neededVersions.size() >= kMostVersions) {
            FailAsBroken("its versions have no end");
        }
        _object.neededVersions.push_back({library, name, isWeak});
        AddVersion(index, {name, (index & kHiddenVersion) != 0});
    }

    /// The number of symbols that the loader can find or has to.
    std::uint64_t CountSymbols() const {
        if (_tags.contains(DT_HASH)) return BytesFrom(Value(DT_HASH)).Word(4);
        if (!_tags.contains(DT_GNU_HASH)) return 0;
        const Bytes bytes = BytesFrom(Value(DT_GNU_HASH));
        const std::uint64_t buckets = bytes.Word(0);
        const std::uint64_t first = bytes.Word(4);
        const std::uint64_t filterWord = _object.processor.elfClass == ELFCLASS32 ? 4 : 8;
        const std::uint64_t bucketsAt = 16 + filterWord * bytes.Word(8);
        const std::uint64_t chainsAt = bucketsAt + 4 * buckets;
        std::uint64_t last = 0;
        for (std::uint64_t i = 0; i < buckets; ++i) {
            last = std::max<std::uint64_t>(last, bytes.Word(bucketsAt + 4 * i));
        }
        if (last < first) return first;
        while ((bytes.Word(chainsAt + 4 * (last - first)) & 1U) == 0) ++last;
        return last + 1;
    }

    void ReadSymbols() {
        const std::uint64_t count = CountSymbols();
        if (count == 0) return;
        const std::uint64_t size =
            _object.processor.elfClass == ELFCLASS32 ? sizeof(Elf32_Sym) : sizeof(Elf64_Sym);
        Elf_Data* const symbols = At(Value(DT_SYMTAB), count * size, ELF_T_SYM, true);
        const Elf_Data* const versions =
            _object.hasVersions ? At(Value(DT_VERSYM), count * 2, ELF_T_HALF, true) : nullptr;
        GElf_Sym symbol;
        for (int i = 1; ::gelf_getsym(symbols, i, &symbol) != nullptr; ++i) {
            const unsigned version =
                versions != nullptr
                    ? static_cast<const GElf_Half*>(versions->d_buf)[static_cast<unsigned>(i)]
                    : 0;
            ReadSymbol(symbol, version);
        }
    }

    void ReadSymbol(const GElf_Sym& symbol, unsigned version) {
        const auto binding = GELF_ST_BIND(symbol.st_info);
        if (binding == STB_LOCAL) return;
        const auto known = _versions.find(version & kVersionIndex);
        const Version of = known == _versions.end() ? Version{} : known->second;
        if (symbol.st_shndx == SHN_UNDEF) {
            if (binding == STB_WEAK || symbol.st_name == 0) return;
            _object.undefined.push_back({TextAt(symbol.st_name), of.name, of.isHidden});
            return;
        }
        const auto visibility = GELF_ST_VISIBILITY(symbol.st_other);
        if (visibility != STV_DEFAULT && visibility != STV_PROTECTED) return;
        const std::string_view name = TextAt(symbol.st_name);
        _object.definitions.emplace(
            name, VersionedSymbol{name, of.name, (version & kHiddenVersion) != 0});
    }

    ElfFile _file;
    SharedObject _object;
    GElf_Phdr _dynamic{};
    std::vector<GElf_Phdr> _loaded;
    std::map<Tag, std::uint64_t> _tags;
    std::unordered_map<unsigned, Version> _versions;
    std::uint64_t _textRead = 0;
};

}  // namespace

bool SharedObject::Provides(const VersionedSymbol& wanted) const {
    constexpr int kMostOfOneName = 100;  // so that a broken file does not take for ever
    const auto [begin, end] = definitions.equal_range(wanted.name);
    int count = 0;
    for (auto entry = begin; entry != end && count < kMostOfOneName; ++entry, ++count) {
        const VersionedSymbol& defined = entry->second;
        if (!hasVersions || defined.version == wanted.version) return true;
        if (wanted.version.empty() && !defined.isHidden) return true;
        if (defined.version.empty() && !defined.isHidden && !wanted.isHidden) return true;
    }
    return false;
}

bool SharedObject::DefinesVersion(std::string_view version) const {
    return std::find(versions.begin(), versions.end(), version) != versions.end();
}

SharedObject ReadSharedObject(const std::string& path) {
    return Reader(path).Read();
}

}  // namespace lyr::inspection
