#pragma once
#include <lyr/kit.h>

/// What has a title. The text is the object's and lives as long.
struct ITitled : IUnknown {
    LYR_INTERFACE(ITitled, "3a20b020-e95b-4891-9618-d8885cbfae78");
    virtual const char* Title() = 0;
};

/// Text that grows.
struct IText : IUnknown {
    LYR_INTERFACE(IText, "b126b0cd-46ce-473c-bb39-8c3f2cdf5012");
    virtual void Add(const char* words) = 0;
    virtual int Length() = 0;
};

/// IText with what came later.
struct IDraft : IText {
    LYR_INTERFACE(IDraft, "5b8042b5-15cf-48a1-8378-f615af97a084");
    virtual void Clear() = 0;
};

struct IStatistics : IUnknown {
    LYR_INTERFACE(IStatistics, "ceec907d-7083-42f8-b480-ad546ec827cf");
    virtual int Words() = 0;
};

/// The one place in a text where its reader has stopped.
struct IBookmark : IUnknown {
    LYR_INTERFACE(IBookmark, "cca96f74-2bad-4762-97b9-7c92ffe03d6d");
    virtual int Place() = 0;
    virtual void SetPlace(int place) = 0;
    virtual bool IsAtEnd() = 0;
};

/// A way through a text; each that is asked for begins at the beginning.
struct ICursor : IUnknown {
    LYR_INTERFACE(ICursor, "7a0e235b-1da0-4dc8-8c81-4bd7f6ae3866");
    virtual int Place() = 0;
    virtual void Forward(int characters) = 0;
};

struct IPage : IUnknown {
    LYR_INTERFACE(IPage, "58d60ba1-1d71-40fa-ab27-a3d5e6d67ca3");
    virtual int Number() = 0;
    virtual int Of() = 0;
};

struct IBinder : IUnknown {
    LYR_INTERFACE(IBinder, "c24a5e9a-34eb-438e-b03b-046906ca4d73");
    virtual lyr::Ref<IPage> AddPage() = 0;
};

struct ISpelling : IUnknown {
    LYR_INTERFACE(ISpelling, "5ff85eee-0547-4139-896c-3ec66943cd00");
    virtual bool IsRight(const char* word) = 0;
};

/// The class id of notes, for clients that make objects by id.
inline constexpr CLSID kNoteId = LYR_ID("9961b330-9129-44b3-aeb1-5c563de03ed1");
