#include "inspection/Manifest.h"

#include "inspection/LibraryNames.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace lyr::inspection {

namespace {

constexpr std::string_view kFormat = "lyr1";

std::vector<std::string> Split(std::string_view record) {
    std::vector<std::string> fields;
    for (;;) {
        const std::size_t end = record.find(' ');
        fields.emplace_back(record.substr(0, end));
        if (end == std::string_view::npos) return fields;
        record.remove_prefix(end + 1);
    }
}

/// Turns the records of one library into what they declare.
class Reader {
public:
    explicit Reader(Manifest& manifest) : _manifest(manifest), _place{manifest.library.path} {}

    /// Whether the fields are a record of the form that is known.
    bool Take(const std::vector<std::string>& fields) {
        if (fields.size() < 3 || fields[0] != kFormat) return false;
        if (std::any_of(fields.begin(), fields.end(), [](auto& field) { return field.empty(); })) {
            return false;
        }
        const std::string& kind = fields[1];
        if (kind == "class") return fields.size() == 5 && TakeClass(fields);
        if (kind == "creatable") return fields.size() == 3 && TakeCreatable(fields[2]);
        if (kind == "interface") return fields.size() == 5 && TakeInterface(fields, fields[2], {});
        if (kind == "extension") return fields.size() == 4 && TakeExtension(fields[2]);
        return kind == "extends" && fields.size() == 6 &&
               TakeInterface({fields.begin() + 1, fields.end()}, fields[3], fields[2]);
    }

    /// To be called behind the last record: gives the classes with an id their lines.
    void Finish() {
        const bool makesAny = _manifest.library.exports.contains(kClassObjectFunction);
        for (const DeclaredClass& declared : _manifest.classes) {
            if (declared.clsid.empty()) continue;
            const bool isMade = makesAny || _creatable.contains(declared.name);
            _manifest.lines.classes.push_back(
                {declared.clsid, declared.name, isMade ? _manifest.libraryName : "", _place});
        }
    }

private:
    /// Name, id and base are the last three fields.
    bool TakeClass(const std::vector<std::string>& fields) {
        const std::string id = CanonicalId(fields[3]);
        if (id.empty() && fields[3] != "-") return false;
        const std::string& base = fields[4] != "-" ? fields[4] : kBaseOfAll;
        _manifest.classes.push_back({fields[2], id, base, false, _place});
        return true;
    }

    bool TakeExtension(const std::string& name) {
        _manifest.classes.push_back({name, "", "", true, _place});
        return true;
    }

    bool TakeCreatable(const std::string& name) {
        _creatable.insert(name);
        _manifest.lines.pairs.push_back(
            {name, "CreateInterface", _manifest.libraryName, "", "", _place});
        return true;
    }

    /// Interface and id are the last two fields.
    bool TakeInterface(const std::vector<std::string>& fields, const std::string& className,
                       const std::string& extension) {
        const std::string& name = fields[fields.size() - 2];
        const std::string iid = CanonicalId(fields.back());
        if (iid.empty()) return false;
        _manifest.lines.pairs.push_back(
            {className, name, _manifest.libraryName, "", extension, _place});
        _manifest.lines.interfaces.push_back({iid, name, _place});
        return true;
    }

    Manifest& _manifest;
    const Place _place;
    std::unordered_set<std::string> _creatable;
};

void AddRecordError(const std::string& record, const std::string& path, Findings& findings) {
    const bool isOfAnotherFormat = !record.starts_with(std::string(kFormat) + " ");
    findings.AddError({path},
                      "its record \"" + record + "\" is not understood; " +
                          (isOfAnotherFormat ? "take the lyr that belongs to the headers which the "
                                               "library was built with"
                                             : "build the library again"),
                      "bad-record");
}

}  // namespace

std::optional<Manifest> ReadManifest(const std::string& path, Findings& findings) {
    std::optional<LibraryFile> library = ReadLibraryFile(path, findings);
    if (!library) return std::nullopt;
    if (NameOfLibraryFile(path).empty()) {
        findings.AddError({path},
                          "no dictionary can name this file; a library's name has \".so\" and no "
                          "blank in it",
                          "library-name");
        return std::nullopt;
    }
    Findings ofRecords;
    Manifest manifest = ManifestOf(*std::move(library), ofRecords);
    for (const Finding& finding : ofRecords.All()) findings.All().push_back(finding);
    if (ofRecords.HasErrors()) return std::nullopt;
    return manifest;
}

Manifest ManifestOf(LibraryFile library, Findings& findings) {
    const std::string path = library.path;
    Manifest manifest{std::move(library), NameOfLibraryFile(path), {}, {}};
    Reader reader(manifest);
    for (const std::string& record : manifest.library.records) {
        if (!reader.Take(Split(record))) AddRecordError(record, path, findings);
    }
    reader.Finish();
    return manifest;
}

}  // namespace lyr::inspection
