#pragma once
// The engine that reads an executable: loads it as data, enumerates its
// resources into model objects and extracts them through commands, with or
// without emission. Embedded by every component that reads a source file.
#include <memory>
#include <string>
#include <vector>

#include "frame/resource.h"
#include "host/events.h"
#include "platform/com/com_ptr.h"
#include "platform/win32/resources.h"

namespace tervane {

class CResourceParserImpl {
public:
    CResourceParserImpl();
    ~CResourceParserImpl();
    CResourceParserImpl(const CResourceParserImpl&) = delete;
    CResourceParserImpl& operator=(const CResourceParserImpl&) = delete;

    // 0, E_ACCESSDENIED when the file can't be loaded, 1 when something was thrown.
    HRESULT InitialiseParser(const std::u16string& path);
    // The backward conversion's load of its source: throws IOException when
    // the file is missing; 0 or E_ACCESSDENIED.
    HRESULT InitialiseParserSettings(const std::u16string& path);
    int EnumerateResources();
    // 0, or E_ACCESSDENIED when a resource can't be found, loaded or locked.
    HRESULT ExtractResources(long emit);

    int GetResourceBuffer(CResource& resource);
    DWORD GetSizeofResource(CResource& resource);
    void IsFileExist();
    static WORD GetResourceType(const CResource& resource);
    static WORD GetCodePage(WORD language);
    // The name's text, or the decimal of its number, trimmed at both ends.
    static std::string IdentifierText(const ResName& name);
    bool ReadMenuHeader(CResource& menu);

    void SetSink(IEvents* sink) { sink_ = ComPtr<IEvents>(sink); }
    IEvents* Sink() const { return sink_.get(); }
    void SetHost(IFilterHost* host);
    void ReleaseHost() { host_.Reset(); }
    bool HasHost() const { return static_cast<bool>(host_); }
    IFilterHost* Host() const { return host_.get(); }
    void SetBatchSize(long size) { batchSize_ = size; }
    const std::vector<std::unique_ptr<CResource>>& Resources() const { return resources_; }
    std::vector<std::unique_ptr<CResource>>& Resources() { return resources_; }

private:
    static BOOL TypeCallback(HMODULE module, const ResName& type, LONG_PTR context);
    static BOOL NameCallback(HMODULE module, const ResName& type, const ResName& name,
                             LONG_PTR context);
    static BOOL LanguageCallback(HMODULE module, const ResName& type, const ResName& name,
                                 WORD language, LONG_PTR context);
    void AddResource(const ResName& type, const ResName& name, WORD language);
    HRESULT Load(const char* context);
    // The resource's place in the module, or a failure with the last error.
    HRSRC FindInfo(const CResource& resource);
    bool ReadMenuHeader(CResource& menu, HRSRC info);
    // The enumeration's answer for the resource at place, or null when the
    // list has changed since.
    HRSRC Remembered(const CResource& resource, std::size_t place, WORD type) const;
    int GetResourceBuffer(CResource& resource, std::size_t place, WORD type);
    int LoadBuffer(HRSRC info);
    void ReportProgress();
    void FreeModule();

    ComPtr<IEvents> sink_;
    long batchSize_ = 1;
    std::vector<std::unique_ptr<CResource>> resources_;
    ComPtr<IFilterHost> host_;
    double total_ = 0;
    double done_ = 0;
    short progressWanted_ = 0;
    std::u16string path_;
    HMODULE module_ = nullptr;
    HRSRC resourceInfo_ = nullptr;
    HGLOBAL resourceHandle_ = nullptr;
    Bytes resourceBytes_;
    // What the enumeration found, at the places of resources_; cleared with the module.
    struct Found {
        WORD type = 0;
        ResName name;
        WORD language = 0;
        HRSRC info = nullptr;
    };
    std::vector<Found> found_;
    bool tracing_ = false;
};

} // namespace tervane
