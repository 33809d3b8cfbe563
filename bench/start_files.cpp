// start_files <directory> <libraries> <entry points> [<prefix>]: makes a set of component libraries
// with that many entry points each, and their dictionary files, in the directory. The prefix begins
// all names. A library is assembled, as compilers take long for so many functions.

#include "StartSet.h"

#include <cstdio>
#include <cstdlib>

namespace {

using bench::StartEntry, bench::StartSet;

// What an entry point does: it counts its calls, so that the right one can be told from another,
// and hands out the object. An object by class id is the counters' address.
#if defined(__x86_64__)
constexpr const char* kEntryPoint = "incb .Lcalls+%zu(%%rip)\nmovq %%rdi, %%rax\nret\n";
constexpr const char* kClassObject =
    "leaq .Lcalls(%rip), %rax\nmovq %rax, (%rdx)\nxorl %eax, %eax\nret\n";
#elif defined(__aarch64__)
constexpr const char* kEntryPoint =
    "adrp x9, .Lcalls+%1$zu\nadd x9, x9, :lo12:.Lcalls+%1$zu\n"
    "ldrb w10, [x9]\nadd w10, w10, 1\nstrb w10, [x9]\nret\n";
constexpr const char* kClassObject =
    "adrp x9, .Lcalls\nadd x9, x9, :lo12:.Lcalls\nstr x9, [x2]\nmov w0, 0\nret\n";
#endif

void BeginSymbol(std::ostream& out, const std::string& name, const char* type) {
    out << ".globl " << name << "\n.type " << name << ", %" << type << '\n' << name << ":\n";
}

void EndSymbol(std::ostream& out, const std::string& name) {
    out << ".size " << name << ", . - " << name << '\n';
}

void WriteSource(const std::filesystem::path& path, const StartSet& set, std::size_t library) {
    std::ofstream out(path);
    out << ".text\n";
    for (std::size_t i = 0; i < set.entryPoints; ++i) {
        const std::string symbol = StartEntry(set, library * set.entryPoints + i).Symbol(set);
        BeginSymbol(out, symbol, "function");
        char body[256];
        std::snprintf(body, sizeof body, kEntryPoint, i);
        out << body;
        EndSymbol(out, symbol);
    }
    BeginSymbol(out, "LYRSysTSDllGetClassObject", "function");
    out << kClassObject;
    EndSymbol(out, "LYRSysTSDllGetClassObject");
    out << ".bss\n";
    BeginSymbol(out, "lyrBenchCalls", "object");
    out << ".Lcalls: .zero " << set.entryPoints << '\n';
    EndSymbol(out, "lyrBenchCalls");
    out << ".section .note.GNU-stack, \"\", %progbits\n";
}

bool MakeLibrary(const StartSet& set, std::size_t library) {
    const std::filesystem::path file = set.LibraryDirectory() / set.LibraryName(library);
    WriteSource(file.string() + ".s", set, library);
    const std::string command =
        LYR_BENCH_COMPILER " -shared -o '" + file.string() + ".so' '" + file.string() + ".s'";
    const bool made = std::system(command.c_str()) == 0;
    std::filesystem::remove(file.string() + ".s");
    return made;
}

/// A ".dicts" file for each library; one ".iidts" and one ".clsidts" file in each directory.
void WriteDictionaries(const StartSet& set) {
    const std::vector<GUID> ids = set.Ids();
    std::ofstream interfaces;
    std::ofstream classes;
    for (std::size_t library = 0; library < set.libraries; ++library) {
        const std::filesystem::path directory = set.DictionaryDirectory(library);
        const std::string name = set.LibraryName(library);
        if (library % StartSet::kLibrariesOfADirectory == 0) {
            std::filesystem::create_directories(directory);
            interfaces = std::ofstream(directory / (name + ".iidts"));
            classes = std::ofstream(directory / (name + ".clsidts"));
        }
        std::ofstream entries(directory / (name + ".dicts"));
        for (std::size_t i = 0; i < set.entryPoints; ++i) {
            const StartEntry entry(set, library * set.entryPoints + i);
            const std::string className = set.ClassName(entry.classNumber);
            const std::string interfaceName = set.InterfaceName(entry.interfaceNumber);
            entries << className << ' ' << interfaceName << ' ' << name << '\n';
            if (i < StartSet::kInterfaces) {
                interfaces << bench::Text(ids[entry.interfaceNumber]) << ' ' << interfaceName
                           << '\n';
            }
            if (i % StartSet::kInterfaces == 0) {
                classes << bench::Text(ids[set.Interfaces() + entry.classNumber]) << ' '
                        << className << ' ' << set.LibraryOfClass(entry.classNumber) << '\n';
            }
        }
    }
}

int Usage() {
    std::fprintf(stderr, "start_files <directory> <libraries> <entry points> [<prefix>]\n");
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 4) return Usage();
    const StartSet set{std::filesystem::absolute(argv[1]), std::strtoul(argv[2], nullptr, 10),
                       std::strtoul(argv[3], nullptr, 10), argc > 4 ? argv[4] : ""};
    // As many names of three and of four words there are.
    constexpr std::size_t kMostInterfaces = 1U << 15U;
    constexpr std::size_t kMostClasses = 1U << 20U;
    if (set.Entries() == 0) return Usage();
    if (set.Interfaces() > kMostInterfaces || set.Classes() > kMostClasses) return Usage();
    // Only what an earlier run has made: the directory may be anybody's.
    for (const auto& old : {set.directory / "dictionaries", set.LibraryDirectory()}) {
        std::filesystem::remove_all(old);
    }
    std::filesystem::create_directories(set.LibraryDirectory());
    WriteDictionaries(set);
    for (std::size_t library = 0; library < set.libraries; ++library) {
        if (!MakeLibrary(set, library)) return 1;
    }
    std::ofstream(set.ShapeFile())
        << set.libraries << ' ' << set.entryPoints << ' ' << set.prefix << '\n';
}
