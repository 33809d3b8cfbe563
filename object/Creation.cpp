#include "object/Creation.h"

#include "LYRSysTSDicoCLSIDName.h"
#include "LYRThrLibraryManager.h"
#include "dictionary/DictionaryScan.h"
#include "dictionary/EntryCopy.h"
#include "registries/ClassRecord.h"
#include "support/AddressCast.h"
#include "support/Notes.h"
#include "support/Shortage.h"

#include <optional>
#include <string>

namespace lyr::internal {

namespace {

constexpr const char* kCreate = "CreateInterface";
constexpr const char* kGetClassObject = "LYRSysTSDllGetClassObject";

/// Whether the dictionary files may be read for the answer.
bool MayRead(Notes* notes) {
    return notes == nullptr || notes->MayRead();
}

/// Tells of files that have not been read.
void NoteFiles(const char* className, Notes* notes) {
    if (notes == nullptr) return;
    switch (StateOfDictionaryFiles()) {
        case FilesState::kRead:
            return;
        case FilesState::kNoFolders:
            return notes->Add(Cause::kNoFolders, className, kCreate);
        case FilesState::kBeingRead:
            return notes->Add(Cause::kFilesBeingRead, className, kCreate);
        case FilesState::kNotRead:
            return notes->Add(Cause::kFilesNotRead, className, kCreate);
    }
}

void* FindFunction(const char* library, const char* symbol, const char* className, Notes* notes) {
    bool mayPass = false;
    void* const address =
        LYRThrLibraryManager::TryGetFunctionAddress(library, symbol, mayPass, notes);
    if (notes == nullptr) return address;
    notes->AddLoad(address, className, kCreate, library, symbol);
    if (address != nullptr) {
        notes->Add(Cause::kAnswered, className, kCreate, library, nullptr, symbol);
    }
    return address;
}

CreationFunction FindEntryPoint(const char* className, const char* library, Notes* notes) {
    const auto symbol = RefuseOnShortage(
        std::nullopt, [=] { return std::optional(std::string("fctLYRSysTSCreate") + className); });
    if (!symbol) return nullptr;
    return ToFunction<CreationFunction>(FindFunction(library, symbol->c_str(), className, notes));
}

}  // namespace

CreationFunction FindCreationFunction(const char* className, const char* library, Notes* notes) {
    const EntryCopy entry = EntryCopy::Of(className, kCreate, MayRead(notes) ? 1 : 0);
    NoteFiles(className, notes);
    if (entry.creator != nullptr) {
        if (notes != nullptr) notes->Add(Cause::kKnownAnswer, className, kCreate, entry.library);
        return ToFunction<CreationFunction>(reinterpret_cast<void*>(entry.creator));
    }
    if (library == nullptr) library = entry.library;
    if (notes != nullptr) {
        const Cause cause = library != nullptr ? Cause::kEntryFound : Cause::kNoCreator;
        notes->Add(cause, className, kCreate, library);
    }
    return library != nullptr ? FindEntryPoint(className, library, notes) : nullptr;
}

GetClassObject FindGetClassObject(const GUID& clsid, Notes* notes) {
    const CLSIDNameRecord* const record =
        MayRead(notes) ? LYRSysTSDicoCLSIDName::QueryDicoCLSIDNameByCLSID(clsid)
                       : KnownClass(clsid);
    const char* const className = record != nullptr ? record->className : nullptr;
    NoteFiles(className, notes);
    const char* const library = record != nullptr ? record->library : nullptr;
    if (notes != nullptr) {
        const Cause cause = record != nullptr ? Cause::kEntryFound : Cause::kUnknownClassId;
        notes->Add(cause, className, nullptr, library);
    }
    if (library == nullptr) {
        if (record != nullptr && notes != nullptr) {
            notes->Add(Cause::kNoLibrary, className, nullptr);
        }
        return nullptr;
    }
    return ToFunction<GetClassObject>(FindFunction(library, kGetClassObject, className, notes));
}

}  // namespace lyr::internal
