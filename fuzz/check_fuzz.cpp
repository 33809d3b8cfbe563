// What `lyr check` reads: an input that begins with a digit is a dictionary file of that kind, with
// what stands behind it; any other is the library that the lines of another dictionary lead to, and
// that a second library needs. Whatever they hold, the answer is findings.
#include "DictionaryModel.h"
#include "inspection/Survey.h"

#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

/// An image of its own, so that nothing of this machine is read.
struct Disk {
    Disk() {
        fs::create_directory(root + "/d");
        fs::create_directory(root + "/l");
        Write("d/p.dicts", "Circle IShape libA\nSquare IShape A.so EXTENDED_BY Layer\n");
        Write("d/p.clsidts", "{11111111-0000-0000-0000-00000000000A} Circle libA\n");
    }
    ~Disk() { fs::remove_all(root); }
    Disk(const Disk&) = delete;
    Disk& operator=(const Disk&) = delete;

    void Write(const std::string& name, const std::string& text) const {
        std::ofstream(root + "/" + name, std::ios::binary) << text;
    }

    std::string root = mkdtemp((fs::temp_directory_path() / "lyrXXXXXX").string().data());
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size) {
    static const Disk disk;
    const std::string input(data, size);
    const char* const kinds[] = {"d/q.dicts", "d/q.iidts", "d/q.clsidts"};
    for (const char* kind : kinds) fs::remove(disk.root + "/" + kind);
    const bool isDictionary = !input.empty() && input[0] >= '0' && input[0] <= '2';
    if (isDictionary) disk.Write(kinds[input[0] - '0'], input.substr(1));
    disk.Write("l/libA.so", isDictionary ? "" : input);

    lyr::inspection::Survey survey({"/d"}, {{"/l"}, {}, "", lyr::inspection::Image(disk.root)});
    const lyr::inspection::Findings& findings = survey.Found();
    Require(!survey.Files().empty() && findings.Lines(3).size() < (1U << 24U));
    return 0;
}
