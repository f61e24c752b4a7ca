#include "frame/server/tervane_filter_module.h"

#include <climits>
#include <cstdlib>
#include <dlfcn.h>
#include <string_view>

#include "backward/tervane_writer.h"
#include "frame/component_ids.h"
#include "frame/tervane_parser.h"
#include "platform/com/component.h"
#include "platform/com/guid.h"
#include "platform/com/registrar.h"
#include "platform/win32/last_error.h"
#include "platform/win32/resources.h"
#include "preview/tervane_preview_writer.h"
#include "scanner/tervane_scanner.h"
#include "stream/interactive_parser.h"
#include "verify/tervane_verifier.h"

namespace tervane {

namespace {

constexpr int kAppScript = 101;

// The type library is registered under its identifier, version and path, so
// that the classes' TypeLib values lead somewhere; it carries no type
// information, since the own interfaces have no operations a script could call.
constexpr std::string_view kTypeLibraryScript = R"(HKCR
{
	NoRemove TypeLib
	{
		'%LIBID%'
		{
			'1.0' = s 'TervaneFilter 1.0 Type Library'
			{
				'0'
				{
					'win32' = s '%MODULE%'
				}
				'FLAGS' = s '0'
				'HELPDIR' = s '%MODULEDIR%'
			}
		}
	}
}
)";

std::string_view Script(int number) {
    HMODULE module = TervaneModuleHandle();
    HRSRC found = FindResourceA(module, ResName(number), ResName("REGISTRY"));
    if (found == nullptr)
        return {};
    const void* bytes = LockResource(LoadResource(module, found));
    return bytes ? std::string_view(static_cast<const char*>(bytes), SizeofResource(module, found))
                 : std::string_view();
}

int ScriptOf(REFCLSID clsid) {
    for (const ComponentClass& c : ComponentClasses())
        if (c.clsid == clsid)
            return c.scriptResource;
    return 0;
}

Replacements ModuleReplacements() {
    const std::string path = CTervaneFilterModule::ModulePath();
    const std::size_t slash = path.rfind('/');
    return {{"MODULE", path},
            {"MODULEDIR", slash == std::string::npos ? std::string(".") : path.substr(0, slash)},
            {"APPID", GuidToString(APPID_TervaneFilter)},
            {"LIBID", GuidToString(LIBID_TervaneFilterLib)}};
}

HRESULT RunScript(int number, const Replacements& replacements, bool registering) {
    const std::string_view script = Script(number);
    if (script.empty())
        return HRESULT_FROM_WIN32(ERROR_RESOURCE_NAME_NOT_FOUND);
    return RunRegistrationScript(script, replacements, registering);
}

const CTervaneFilterModule g_module;

} // namespace

std::span<const CTervaneFilterModule::ObjectEntry> CTervaneFilterModule::Objects() {
    // The object table: one line a served class.
    static constexpr ObjectEntry objects[] = {
        {&CLSID_TervaneParser, &CachedClassFactory<TervaneParser>},
        {&CLSID_TervaneWriter, &CachedClassFactory<TervaneWriter>},
        {&CLSID_TervanePreviewWriter, &CachedClassFactory<TervanePreviewWriter>},
        {&CLSID_TervaneScanner, &CachedClassFactory<TervaneScanner>},
        {&CLSID_TervaneInteractiveParser, &CachedClassFactory<TervaneInteractiveParser>},
        {&CLSID_TervaneVerifier, &CachedClassFactory<TervaneVerifier>},
    };
    return objects;
}

HRESULT CTervaneFilterModule::GetClassObject(REFCLSID clsid, REFIID riid, void** object) const {
    if (object == nullptr)
        return E_POINTER;
    *object = nullptr;
    for (const ObjectEntry& entry : Objects())
        if (*entry.clsid == clsid) {
            RegisterComponentProgIds();
            IClassFactory* factory = entry.classObject();
            return factory ? factory->QueryInterface(riid, object) : E_OUTOFMEMORY;
        }
    return CLASS_E_CLASSNOTAVAILABLE;
}

HRESULT CTervaneFilterModule::CanUnloadNow() const {
    return ModuleLockCount() == 0 ? S_OK : S_FALSE;
}

HRESULT CTervaneFilterModule::RegisterServer() const {
    const Replacements replacements = ModuleReplacements();
    HRESULT hr = RunScript(kAppScript, replacements, true);
    for (const ObjectEntry& entry : Objects())
        if (SUCCEEDED(hr))
            hr = RunScript(ScriptOf(*entry.clsid), replacements, true);
    if (SUCCEEDED(hr))
        hr = RunRegistrationScript(kTypeLibraryScript, replacements, true);
    return hr;
}

HRESULT CTervaneFilterModule::UnregisterServer() const {
    const Replacements replacements = ModuleReplacements();
    HRESULT hr = S_OK;
    for (const ObjectEntry& entry : Objects())
        if (SUCCEEDED(hr))
            hr = RunScript(ScriptOf(*entry.clsid), replacements, false);
    if (SUCCEEDED(hr))
        hr = RunRegistrationScript(kTypeLibraryScript, replacements, false);
    if (SUCCEEDED(hr))
        hr = RunScript(kAppScript, replacements, false);
    return hr;
}

std::string CTervaneFilterModule::ModulePath() {
    Dl_info info{};
    if (::dladdr(reinterpret_cast<void*>(&DllGetClassObject), &info) == 0 ||
        info.dli_fname == nullptr)
        return {};
    char resolved[PATH_MAX];
    return ::realpath(info.dli_fname, resolved) ? resolved : info.dli_fname;
}

} // namespace tervane

HRESULT DllGetClassObject(REFCLSID clsid, REFIID riid, void** object) {
    return tervane::g_module.GetClassObject(clsid, riid, object);
}

HRESULT DllCanUnloadNow() {
    return tervane::g_module.CanUnloadNow();
}

HRESULT DllRegisterServer() {
    return tervane::g_module.RegisterServer();
}

HRESULT DllUnregisterServer() {
    return tervane::g_module.UnregisterServer();
}
