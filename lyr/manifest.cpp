// lyr manifest: the dictionary files of a component library, out of the records that it holds, and
// whether libraries keep what they and hand-written lines promise.

#include "inspection/Manifest.h"

#include "inspection/Contradictions.h"
#include "inspection/EntryPoints.h"
#include "inspection/LibraryNames.h"
#include "lyr/Commands.h"
#include "lyr/DictionaryFiles.h"

#include <cstdio>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace lyr::program {

namespace {

using inspection::DictionaryLines;
using inspection::Findings;
using inspection::Manifest;

struct Arguments {
    std::vector<std::string> libraries;
    std::vector<std::string> handWritten;
    std::string folder = ".";
    std::string name;
    bool checkOnly = false;
};

/// Whether a hand-written line says that the library implements something.
bool IsNamedIn(const DictionaryLines& lines, const std::string& path) {
    const auto leads = [&](const auto& line) {
        return inspection::LeadsToLibraryFile(line.library, path);
    };
    return std::any_of(lines.pairs.begin(), lines.pairs.end(), leads) ||
           std::any_of(lines.classes.begin(), lines.classes.end(), leads);
}

void CheckRecords(const std::vector<Manifest>& manifests, const DictionaryLines& handWritten,
                  Findings& findings) {
    for (const Manifest& manifest : manifests) {
        const std::string& path = manifest.library.path;
        if (!manifest.library.records.empty() || IsNamedIn(handWritten, path)) continue;
        findings.AddError({path},
                          "has no components, or their records are lost; perhaps they come from a "
                          "static library, which the linker takes nothing from unasked: name the "
                          "sources, or link an object library",
                          "no-records");
    }
}

/// A program would load one of them and take it for both.
void CheckFileNames(const std::vector<Manifest>& manifests, Findings& findings) {
    std::map<std::string, std::string> firstOf;
    for (const Manifest& manifest : manifests) {
        const std::string& path = manifest.library.path;
        const auto [first, isFirst] = firstOf.try_emplace(manifest.libraryName, path);
        if (isFirst) continue;
        std::vector<inspection::Note> notes(1);
        notes[0].place.file = first->second;
        notes[0].text = "the other is here";
        findings.AddError({path},
                          "two libraries are called " + manifest.libraryName +
                              "; give one of the files another name",
                          "two-libraries", notes);
    }
}

/// What the dictionary files of these libraries say together. Adds an error for whatever keeps that
/// from working.
DictionaryLines CheckedLines(const Arguments& arguments, std::vector<Manifest>& manifests,
                             Findings& findings) {
    DictionaryLines handWritten;
    for (const std::string& path : arguments.handWritten) {
        inspection::ReadDictionaryFile(path, inspection::BadLine::IsLeftOut, handWritten, findings);
    }
    for (const std::string& path :
         std::set(arguments.libraries.begin(), arguments.libraries.end())) {
        if (auto manifest = inspection::ReadManifest(path, findings)) {
            manifests.push_back(*std::move(manifest));
        }
    }
    DictionaryLines lines;
    for (const Manifest& manifest : manifests) lines.Append(manifest.lines);
    lines.Append(handWritten);

    CheckRecords(manifests, handWritten, findings);
    CheckFileNames(manifests, findings);
    inspection::CheckContradictions(manifests, lines, findings);
    inspection::CheckEntryPointNames(lines, findings);
    inspection::CheckEntryPoints(manifests, lines, findings);
    return lines;
}

Status Run(const Arguments& arguments) {
    Findings findings;
    std::vector<Manifest> manifests;
    const DictionaryLines lines = CheckedLines(arguments, manifests, findings);
    if (!arguments.checkOnly) {
        const std::string& path = arguments.libraries.front();
        const std::string libraryName = inspection::NameOfLibraryFile(path);
        const DictionaryFiles files(arguments.folder,
                                    arguments.name.empty() ? libraryName : arguments.name);
        if (findings.HasErrors()) {
            if (!libraryName.empty()) files.Remove();
        } else {
            files.Write(lines, libraryName, findings);
        }
    }
    std::fputs(findings.Text().c_str(), stderr);
    return findings.HasErrors() ? kErrors : kGood;
}

std::string RefuseFolders(const std::string& name) {
    if (!name.empty() && name.find('/') == std::string::npos) return {};
    return "a name of files is wanted, without a folder";
}

}  // namespace

void AddManifest(CLI::App& program, Status& status) {
    CLI::App* const command = program.add_subcommand(
        "manifest",
        "Writes the dictionary files of a component library, NAME.dicts, NAME.iidts and "
        "NAME.clsidts, out of the records that the kit left in it. Compares them with what the "
        "library exports, with hand-written lines and with other libraries of the application. "
        "When anything is wrong, says what and leaves no dictionary files behind.");
    const auto arguments = std::make_shared<Arguments>();
    command->add_option("LIBRARY", arguments->libraries, "The library; with --check, any number")
        ->required();
    command->add_option("-o,--output", arguments->folder, "The folder of the files")
        ->capture_default_str();
    command->add_option("--name", arguments->name, "NAME, unless it is the library's")
        ->check(RefuseFolders);
    command->add_option("--with", arguments->handWritten,
                        "Dictionary files written by hand, whose lines are added");
    command->add_flag("--check", arguments->checkOnly, "Writes nothing");
    command->footer(
        "Examples:\n"
        "  lyr manifest build/libGreeter.so -o dictionary\n"
        "  lyr manifest --check build/libGreeter.so build/libLamp.so --with old.dicts");
    command->final_callback([=, &status] {
        if (arguments->libraries.size() > 1 && !arguments->checkOnly) {
            throw CLI::ValidationError("LIBRARY", "several are looked at together with --check");
        }
        status = Run(*arguments);
    });
}

}  // namespace lyr::program
