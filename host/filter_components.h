#pragma once
// The framework interfaces that the system's components implement. The
// meaning of the arguments named secondArg, fourthArg and so on is the
// framework's own; the system ignores them. Operations without a use here
// answer S_OK and do nothing.
#include "host/events.h"

struct IFileParser : IUnknown {
    static constexpr IID iid = tervane::MakeGuid("{F54FD891-3301-47F3-8E62-3DC66738B297}");
    virtual HRESULT Initialize(BSTR path, BSTR secondArg, LONG thirdArg, LONG fourthArg,
                               LONG fifthArg, IFilterHost* host, IEvents* sink) = 0;
    virtual HRESULT raw_SetOption(BSTR name, BSTR value) = 0;
    virtual HRESULT raw_SetContext(IUnknown* context) = 0;
    virtual HRESULT raw_Parse(LONG_PTR cookie) = 0;
    virtual HRESULT raw_Close() = 0;
};

struct IFileWriter : IUnknown {
    static constexpr IID iid = tervane::MakeGuid("{A6F26190-8FCE-4C17-B2B3-1B79E89EB2C2}");
    // language: the target language in its low 16 bits. The writer returns
    // its own IEvents through events.
    virtual HRESULT Initialize(BSTR path, BSTR secondArg, LONG language, LONG fourthArg,
                               LONG fifthArg, IFilterHost* host, IEvents** events) = 0;
    virtual HRESULT raw_SetOption(BSTR name, BSTR value) = 0;
    virtual HRESULT raw_SetContext(IUnknown* context) = 0;
    // cookie goes unchanged to IFilterHost::raw_Pump.
    virtual HRESULT raw_Write(LONG_PTR cookie) = 0;
    virtual HRESULT raw_Close() = 0;
};

struct IPreviewFileWriter : IUnknown {
    static constexpr IID iid = tervane::MakeGuid("{10AA7AD8-2CA4-42C8-A0B2-BBD6563B73BE}");
    virtual HRESULT Initialize(BSTR path, BSTR secondArg, LONG language, LONG fourthArg,
                               LONG fifthArg, IFilterHost* host, VARIANT_BOOL dual,
                               IEvents** events) = 0;
    virtual HRESULT raw_SetOption(BSTR name, BSTR value) = 0;
    virtual HRESULT raw_SetContext(IUnknown* context) = 0;
    virtual HRESULT raw_Write(LONG_PTR cookie) = 0;
    virtual HRESULT raw_Close() = 0;
    // A new copy of the path given to Initialize.
    virtual HRESULT get_PreviewPath(BSTR* path) = 0;
    // Always VARIANT_TRUE.
    virtual HRESULT get_PreviewReady(VARIANT_BOOL* ready) = 0;
};

struct IFilterComponent : IUnknown {
    static constexpr IID iid = tervane::MakeGuid("{1AA84B26-C81F-4F16-B3BB-30C1DC748B3E}");
    // next is the following stage; the filter returns its own IEvents
    // through events.
    virtual HRESULT Initialize(BSTR firstArg, BSTR secondArg, LONG thirdArg, IFilterHost* host,
                               IEvents* next, IEvents** events) = 0;
    virtual HRESULT raw_SetOption(BSTR name, BSTR value) = 0;
    virtual HRESULT raw_SetContext(IUnknown* context) = 0;
    virtual HRESULT raw_Run(LONG_PTR cookie) = 0;
    virtual HRESULT raw_Close() = 0;
};

struct IFileScanner : IUnknown {
    static constexpr IID iid = tervane::MakeGuid("{4FCD0028-071B-4242-A5C6-4AB0E8B8D519}");
    virtual HRESULT Initialize(BSTR path, LONG secondArg, short language, LONG fourthArg) = 0;
    virtual HRESULT raw_Scan(VARIANT_BOOL* result) = 0;
    virtual HRESULT raw_Close() = 0;
    // Stores VARIANT_TRUE.
    virtual HRESULT get_Available(VARIANT_BOOL* available) = 0;
    // Stores a new empty string.
    virtual HRESULT get_Message(BSTR* message) = 0;
};
