#include "lyr/SurveyOptions.h"

#include "inspection/DictionaryFolders.h"

#include <cstdlib>

namespace lyr::program {

namespace {

std::string Variable(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr ? value : "";
}

/// As the loader splits them, which takes ";" too.
std::vector<std::string> SplitLoaderPath(std::string path) {
    for (char& c : path) {
        if (c == ';') c = ':';
    }
    return inspection::SplitPath(path);
}

}  // namespace

void SurveyOptions::AddTo(CLI::App& command) {
    command.add_option("-d,--dictionaries", dictionaries,
                       "Folders of dictionary files, with \":\" between them, in the place of "
                       "LYRDictionaryPath");
    command.add_option("-l,--libraries", libraries,
                       "Folders of libraries, with \":\" between them, searched before those of "
                       "LD_LIBRARY_PATH and the system");
    command.add_option("-p,--program", programFile,
                       "The program that asks: its run path, and what it brings, count");
    command.add_option("--root", root,
                       "The root of another image, in which all absolute paths lie");
}

std::string SurveyOptions::DictionaryPath() const {
    return dictionaries.empty() ? Variable("LYRDictionaryPath") : dictionaries;
}

inspection::Survey SurveyOptions::Look() const {
    const std::string path = DictionaryPath();
    if (path.empty()) {
        throw CLI::ValidationError("--dictionaries",
                                   "is missing, and LYRDictionaryPath names no folder either");
    }
    return inspection::Survey(
        inspection::SplitPath(path),
        {inspection::SplitPath(libraries), SplitLoaderPath(Variable("LD_LIBRARY_PATH")),
         programFile, inspection::Image(root)});
}

}  // namespace lyr::program
