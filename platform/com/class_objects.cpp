#include "platform/com/class_objects.h"

#include <atomic>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

#include <dlfcn.h>

#include "platform/com/com_ptr.h"
#include "platform/registry/registry.h"

namespace tervane {
namespace {

struct Registration {
    DWORD cookie;
    CLSID clsid;
    CLSCTX context;
    ComPtr<IUnknown> classObject;
};

struct ClassTable {
    std::mutex lock;
    std::vector<Registration> registrations;
    DWORD nextCookie = 1;
    std::map<CLSID, std::u16string> progIds;
};

ClassTable& Table() {
    static ClassTable table;
    return table;
}

// Bumped by every registration and revocation, so that a thread's memory of
// earlier lookups (below) knows when it may be stale.
std::atomic<unsigned> registrationGeneration{1};

// The class factories this thread found, with the references they hold: a
// host creates the same few items once per event. Plain data, reached without
// a guard; each class has a home slot and the one after it, so that a lookup
// is one or two comparisons.
struct FactoryMemo {
    struct Entry {
        CLSID clsid;
        CLSCTX context;
        IClassFactory* factory;
    };
    static constexpr std::size_t kEntries = 8;
    unsigned generation;
    bool closed; // the thread is ending: nothing more is remembered
    Entry entries[kEntries];

    static std::size_t Home(REFCLSID clsid) {
        return (clsid.Data1 ^ (clsid.Data1 >> 16)) % kEntries;
    }
    static bool Holds(const Entry& entry, REFCLSID clsid, CLSCTX context) {
        return entry.factory != nullptr && entry.clsid == clsid && entry.context == context;
    }
    [[gnu::noinline]] void Renew(unsigned now) {
        Forget();
        generation = now;
    }
    void Forget() {
        for (Entry& entry : entries)
            if (IClassFactory* factory = std::exchange(entry.factory, nullptr))
                factory->Release();
    }

    IClassFactory* Find(REFCLSID clsid, CLSCTX context) {
        unsigned now = registrationGeneration.load(std::memory_order_acquire);
        if (generation != now) [[unlikely]] {
            Renew(now);
            return nullptr;
        }
        const std::size_t home = Home(clsid);
        if (Holds(entries[home], clsid, context))
            return entries[home].factory;
        const Entry& next = entries[(home + 1) % kEntries];
        return Holds(next, clsid, context) ? next.factory : nullptr;
    }
    void Remember(REFCLSID clsid, CLSCTX context, IClassFactory* factory, unsigned seen);
};
constinit thread_local FactoryMemo factoryMemo = {};

// Gives the remembered references back when the thread ends.
struct FactoryMemoKeeper {
    bool installed = false;
    ~FactoryMemoKeeper() {
        factoryMemo.closed = true;
        factoryMemo.Forget();
    }
};
thread_local FactoryMemoKeeper factoryMemoKeeper;

void FactoryMemo::Remember(REFCLSID clsid, CLSCTX context, IClassFactory* factory, unsigned seen) {
    if (closed || seen != generation ||
        seen != registrationGeneration.load(std::memory_order_acquire))
        return;
    factoryMemoKeeper.installed = true;
    // The home slot if it is free, else the one after it, else the home one.
    const std::size_t home = Home(clsid);
    Entry* slot = &entries[home];
    if (slot->factory != nullptr && entries[(home + 1) % kEntries].factory == nullptr)
        slot = &entries[(home + 1) % kEntries];
    factory->AddRef();
    if (IClassFactory* old = std::exchange(slot->factory, factory))
        old->Release();
    slot->clsid = clsid;
    slot->context = context;
}

// The class objects that the process registered; the registry store's shared
// modules (InprocServer32, DllGetClassObject) come after them once they exist.
HRESULT FindClassObject(REFCLSID clsid, CLSCTX context, ComPtr<IUnknown>& out) {
    ClassTable& table = Table();
    std::lock_guard guard(table.lock);
    // The latest registration wins, as a replacement registered later would.
    for (auto it = table.registrations.rbegin(); it != table.registrations.rend(); ++it)
        if (it->clsid == clsid && (it->context & context) != 0) {
            out = it->classObject;
            return S_OK;
        }
    return REGDB_E_CLASSNOTREG;
}

// The default value of a key below HKEY_CLASSES_ROOT, if it is there.
std::optional<std::string> ClassesRootText(const std::string& path) {
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_CLASSES_ROOT, path.c_str(), 0, KEY_QUERY_VALUE, &key) != ERROR_SUCCESS)
        return std::nullopt;
    DWORD type = REG_NONE;
    DWORD size = 0;
    std::string text;
    LONG result = RegQueryValueExA(key, nullptr, nullptr, &type, nullptr, &size);
    if (result == ERROR_SUCCESS && type == REG_SZ) {
        text.resize(size);
        result = RegQueryValueExA(key, nullptr, nullptr, &type,
                                  reinterpret_cast<BYTE*>(text.data()), &size);
    }
    RegCloseKey(key);
    if (result != ERROR_SUCCESS || type != REG_SZ)
        return std::nullopt;
    text.resize(size);
    while (!text.empty() && text.back() == '\0')
        text.pop_back();
    return text;
}

using GetClassObjectFunction = HRESULT (*)(REFCLSID, REFIID, void**);

// A registered in-process server: the shared object that InprocServer32 names,
// loaded once and kept for the process, asked for the class object.
HRESULT LoadServerClassObject(REFCLSID clsid, CLSCTX context, REFIID riid, void** object) {
    if ((context & CLSCTX_INPROC_SERVER) == 0)
        return REGDB_E_CLASSNOTREG;
    const std::optional<std::string> path =
        ClassesRootText("CLSID\\" + GuidToString(clsid) + "\\InprocServer32");
    if (!path || path->empty())
        return REGDB_E_CLASSNOTREG;
    void* library = ::dlopen(path->c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr)
        return HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND);
    auto entry = reinterpret_cast<GetClassObjectFunction>(::dlsym(library, "DllGetClassObject"));
    if (entry == nullptr)
        return HRESULT_FROM_WIN32(ERROR_PROC_NOT_FOUND);
    return entry(clsid, riid, object);
}

} // namespace

std::optional<std::string> InprocServerPath(const CLSID& clsid) {
    return ClassesRootText("CLSID\\" + GuidToString(clsid) + "\\InprocServer32");
}

void RegisterProgId(const CLSID& clsid, std::u16string progId) {
    ClassTable& table = Table();
    std::lock_guard guard(table.lock);
    table.progIds[clsid] = std::move(progId);
}

std::optional<std::u16string> ProgIdOf(const CLSID& clsid) {
    ClassTable& table = Table();
    std::lock_guard guard(table.lock);
    auto it = table.progIds.find(clsid);
    if (it == table.progIds.end())
        return std::nullopt;
    return it->second;
}

} // namespace tervane

using tervane::ComPtr;

HRESULT CoRegisterClassObject(REFCLSID clsid, IUnknown* classObject, CLSCTX context, DWORD,
                              DWORD* cookie) {
    if (cookie == nullptr || classObject == nullptr)
        return E_INVALIDARG;
    *cookie = 0;
    tervane::ClassTable& table = tervane::Table();
    std::lock_guard guard(table.lock);
    DWORD id = table.nextCookie++;
    table.registrations.push_back({id, clsid, context, ComPtr<IUnknown>(classObject)});
    tervane::registrationGeneration.fetch_add(1, std::memory_order_acq_rel);
    *cookie = id;
    return S_OK;
}

HRESULT CoRevokeClassObject(DWORD cookie) {
    ComPtr<IUnknown> released;
    {
        tervane::ClassTable& table = tervane::Table();
        std::lock_guard guard(table.lock);
        auto& list = table.registrations;
        for (auto it = list.begin(); it != list.end(); ++it)
            if (it->cookie == cookie) {
                // Released outside the lock: its final release may call back.
                released = std::move(it->classObject);
                list.erase(it);
                tervane::registrationGeneration.fetch_add(1, std::memory_order_acq_rel);
                return S_OK;
            }
    }
    return CO_E_OBJNOTREG;
}

HRESULT CoGetClassObject(REFCLSID clsid, CLSCTX context, void*, REFIID riid, void** object) {
    if (object == nullptr)
        return E_INVALIDARG;
    *object = nullptr;
    ComPtr<IUnknown> classObject;
    HRESULT hr = tervane::FindClassObject(clsid, context, classObject);
    if (FAILED(hr))
        return tervane::LoadServerClassObject(clsid, context, riid, object);
    return classObject->QueryInterface(riid, object);
}

HRESULT CLSIDFromProgID(const char16_t* progId, CLSID* clsid) {
    if (progId == nullptr || clsid == nullptr)
        return E_INVALIDARG;
    std::string name;
    for (const char16_t* unit = progId; *unit; ++unit) {
        if (*unit > 0x7F)
            return CO_E_CLASSSTRING;
        name += static_cast<char>(*unit);
    }
    const std::optional<std::string> text = tervane::ClassesRootText(name + "\\CLSID");
    const std::optional<GUID> parsed = text ? tervane::ParseGuid(*text) : std::nullopt;
    if (!parsed)
        return CO_E_CLASSSTRING;
    *clsid = *parsed;
    return S_OK;
}

namespace tervane {
namespace {

// A class this thread has not remembered: found among the registrations.
[[gnu::noinline]] HRESULT CreateUnremembered(REFCLSID clsid, IUnknown* outer, CLSCTX context,
                                             REFIID riid, void** object) {
    unsigned seen = factoryMemo.generation;
    ComPtr<IClassFactory> factory;
    HRESULT hr =
        CoGetClassObject(clsid, context, nullptr, IID_IClassFactory, factory.ReceiveVoid());
    if (FAILED(hr))
        return hr;
    factoryMemo.Remember(clsid, context, factory.get(), seen);
    return factory->CreateInstance(outer, riid, object);
}

} // namespace
} // namespace tervane

HRESULT CoCreateInstance(REFCLSID clsid, IUnknown* outer, CLSCTX context, REFIID riid,
                         void** object) {
    if (object == nullptr)
        return E_POINTER;
    *object = nullptr;
    if (IClassFactory* known = tervane::factoryMemo.Find(clsid, context))
        return known->CreateInstance(outer, riid, object);
    return tervane::CreateUnremembered(clsid, outer, context, riid, object);
}

HRESULT OleRun(IUnknown* object) {
    return object != nullptr ? S_OK : E_INVALIDARG;
}
