#pragma once

#include "GUID.h"
#include "lyr/interface.h"

#include <cstddef>

/// @file
/// The records that a library carries of what its classes answer: text, made while the compiler
/// works, for programs that write dictionary files without loading the library.

namespace lyr {
inline namespace v1 {
namespace detail {

enum class Kind { kComponent, kKeptExtension, kTransientExtension };

constexpr bool IsExtension(Kind kind) {
    return kind != Kind::kComponent;
}

template <std::size_t size>
struct Text {
    char characters[size == 0 ? 1 : size];
};

/// Writes words, or only counts their characters when there is no place for them.
class Writer {
public:
    constexpr explicit Writer(char* place) : _place(place) {}

    constexpr std::size_t Size() const { return _size; }

    constexpr void Put(char c) {
        if (_place != nullptr) _place[_size] = c;
        ++_size;
    }
    constexpr void Put(const char* text) {
        for (; *text != '\0'; ++text) Put(*text);
    }
    constexpr void Word(const char* text) {
        Put(' ');
        Put(text);
    }
    constexpr void Word(const GUID& id) {
        Put(' ');
        Put('{');
        Hex(id.Data1, 8);
        Put('-');
        Hex(id.Data2, 4);
        Put('-');
        Hex(id.Data3, 4);
        for (int i = 0; i < 8; ++i) {
            if (i == 0 || i == 2) Put('-');
            Hex(id.Data4[i], 2);
        }
        Put('}');
    }

private:
    constexpr void Hex(unsigned number, int digits) {
        for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) {
            Put("0123456789ABCDEF"[number >> shift & 15U]);
        }
    }

    char* _place;
    std::size_t _size = 0;
};

constexpr bool IsNameCharacter(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

/// Whether the text is like "(Circle, Square)": names, with commas between them, in parentheses.
constexpr bool IsNameList(const char* text) {
    if (*text++ != '(') return false;
    bool inName = false;
    for (bool needsName = true;; ++text) {
        if (IsNameCharacter(*text)) {
            if (!inName && !needsName) return false;
            inName = true;
            needsName = false;
            continue;
        }
        inName = false;
        if (*text == ')') return !needsName && text[1] == '\0';
        if (*text == ',' && !needsName) {
            needsName = true;
        } else if (*text != ' ') {
            return false;
        }
    }
}

/// Where the next name of such a text begins; its end when none is left.
constexpr const char* FindName(const char* place) {
    while (*place != '\0' && !IsNameCharacter(*place)) ++place;
    return place;
}

/// Whether two names, each up to what is no character of one, are the same.
constexpr bool IsSameName(const char* a, const char* b) {
    for (; IsNameCharacter(*a) && *a == *b; ++a) ++b;
    return !IsNameCharacter(*a) && !IsNameCharacter(*b);
}

/// Whether the name is among those of such a text.
constexpr bool IsNamed(const char* name, const char* names) {
    for (names = FindName(names); *names != '\0'; names = FindName(names)) {
        if (IsSameName(name, names)) return true;
        while (IsNameCharacter(*names)) ++names;
    }
    return false;
}

/// Whether a name stands twice in such a text. By a table, which has more places than there are
/// names: compilers count the steps that they take, and long lists are compared all the same.
template <std::size_t size>
constexpr bool NamesOneTwice(const char (&names)[size]) {
    // Where the names begin, and 1 more: g++ with its sanitizers does not compare pointers here.
    std::size_t table[size] = {};
    for (const char* name = FindName(names); *name != '\0'; name = FindName(name)) {
        const char* end = name;
        std::size_t place = 0;
        for (; IsNameCharacter(*end); ++end) place = place * 31 + static_cast<unsigned char>(*end);
        for (place %= size; table[place] != 0; place = (place + 1) % size) {
            if (IsSameName(names + table[place] - 1, name)) return true;
        }
        table[place] = static_cast<std::size_t>(name - names) + 1;
        name = end;
    }
    return false;
}

/// The next name of such a text, behind `place`, which moves to its end; false when none is left.
constexpr bool NextName(const char*& place, Writer& writer) {
    place = FindName(place);
    if (*place == '\0') return false;
    for (; IsNameCharacter(*place); ++place) writer.Put(*place);
    return true;
}

/// The name of a class and those of the classes that it extends, each with a zero byte behind it,
/// and one more at the end.
template <class Traits>
constexpr std::size_t WriteNames(char* out) {
    Writer writer(out);
    writer.Put(Traits::name);
    writer.Put('\0');
    const char* place = Traits::extended;
    while (NextName(place, writer)) writer.Put('\0');
    writer.Put('\0');
    return writer.Size();
}

template <class Traits>
constexpr auto NamesOf() {
    Text<WriteNames<Traits>(nullptr)> names{};
    WriteNames<Traits>(names.characters);
    return names;
}

constexpr void BeginRecord(Writer& writer, const char* kind) {
    writer.Put("lyr1");
    writer.Word(kind);
}

/// That the class of the traits, or what extends another one, answers `I`.
template <class Traits, class I>
constexpr void WriteInterface(Writer& writer) {
    if constexpr (!IsExtension(Traits::kind)) {
        BeginRecord(writer, "interface");
        writer.Word(Traits::name);
        writer.Word(NameOf<I>());
        writer.Word(IdOf<I>());
        writer.Put('\0');
    } else {
        const char* place = Traits::extended;
        for (;;) {
            // The name is written last but found first: count it apart.
            Writer probe(nullptr);
            const char* after = place;
            if (!NextName(after, probe)) return;
            BeginRecord(writer, "extends");
            writer.Word(Traits::name);
            writer.Put(' ');
            NextName(place, writer);
            writer.Word(NameOf<I>());
            writer.Word(IdOf<I>());
            writer.Put('\0');
        }
    }
}

template <class Traits>
constexpr void WriteClass(Writer& writer) {
    if constexpr (IsExtension(Traits::kind)) {
        BeginRecord(writer, "extension");
        writer.Word(Traits::name);
        writer.Word(Traits::kind == Kind::kKeptExtension ? "kept" : "transient");
    } else {
        BeginRecord(writer, "class");
        writer.Word(Traits::name);
        if constexpr (Traits::Facts::kHasClassId) {
            writer.Word(*Traits::Facts::ClassId());
        } else {
            writer.Word("-");
        }
        writer.Word(Traits::Facts::BaseName());
    }
    writer.Put('\0');
    if constexpr (Traits::Facts::kIsCreatable) {
        BeginRecord(writer, "creatable");
        writer.Word(Traits::name);
        writer.Put('\0');
    }
}

template <class Traits, class Interfaces, bool withClass>
struct Records;
template <class Traits, class... I, bool withClass>
struct Records<Traits, List<I...>, withClass> {
    static constexpr std::size_t Write(char* out) {
        Writer writer(out);
        if constexpr (withClass) WriteClass<Traits>(writer);
        (WriteInterface<Traits, I>(writer), ...);
        return writer.Size();
    }
    static constexpr auto Make() {
        Text<Write(nullptr)> records{};
        Write(records.characters);
        return records;
    }
};

}  // namespace detail
}  // namespace v1
}  // namespace lyr

// They stay in the library, whatever is thrown out of it, since nothing refers to them. Without
// linkage to others: what templates or headers share would be another kind of section.
#if defined(__has_attribute)
#if __has_attribute(retain)
#define LYR_KIT_RETAIN gnu::retain,
#endif
#endif
#if !defined(LYR_KIT_RETAIN)
#define LYR_KIT_RETAIN
#endif
#define LYR_KIT_RECORDS(Class, Traits, Interfaces, withClass)             \
    [[ gnu::used, LYR_KIT_RETAIN gnu::section("lyr_manifest") ]] alignas( \
        1) static constexpr auto LyrRecordsOf##Class =                    \
        ::lyr::detail::Records<Traits, Interfaces, withClass>::Make();
