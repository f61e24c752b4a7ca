#include "platform/com/class_objects.h"

#include <atomic>
#include <map>
#include <mutex>
#include <vector>

#include "platform/com/com_ptr.h"

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

// The class factories this thread found last, with the references they hold:
// a host creates the same few items once per event.
struct FactoryMemo {
    struct Entry {
        CLSID clsid;
        CLSCTX context = 0;
        ComPtr<IClassFactory> factory;
    };
    static constexpr std::size_t kEntries = 4;
    unsigned generation = 0;
    Entry entries[kEntries];
    std::size_t next = 0;

    IClassFactory* Find(REFCLSID clsid, CLSCTX context) {
        unsigned now = registrationGeneration.load(std::memory_order_acquire);
        if (generation != now) {
            for (Entry& entry : entries)
                entry = Entry{};
            generation = now;
            return nullptr;
        }
        for (Entry& entry : entries)
            if (entry.factory && entry.context == context && entry.clsid == clsid)
                return entry.factory.get();
        return nullptr;
    }
    void Remember(REFCLSID clsid, CLSCTX context, IClassFactory* factory, unsigned seen) {
        if (seen != generation || seen != registrationGeneration.load(std::memory_order_acquire))
            return;
        entries[next] = Entry{clsid, context, ComPtr<IClassFactory>(factory)};
        next = (next + 1) % kEntries;
    }
};
thread_local FactoryMemo factoryMemo;

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

} // namespace

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
        return hr;
    return classObject->QueryInterface(riid, object);
}

HRESULT CoCreateInstance(REFCLSID clsid, IUnknown* outer, CLSCTX context, REFIID riid,
                         void** object) {
    if (object == nullptr)
        return E_POINTER;
    *object = nullptr;
    tervane::FactoryMemo& memo = tervane::factoryMemo;
    if (IClassFactory* known = memo.Find(clsid, context))
        return known->CreateInstance(outer, riid, object);
    unsigned seen = memo.generation;
    ComPtr<IClassFactory> factory;
    HRESULT hr =
        CoGetClassObject(clsid, context, nullptr, IID_IClassFactory, factory.ReceiveVoid());
    if (FAILED(hr))
        return hr;
    memo.Remember(clsid, context, factory.get(), seen);
    return factory->CreateInstance(outer, riid, object);
}

HRESULT OleRun(IUnknown* object) {
    return object != nullptr ? S_OK : E_INVALIDARG;
}
