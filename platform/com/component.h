#pragma once
// Writing a component class. The class derives from ComObjectRoot and its
// interfaces, and lists what it answers for:
//
//   class Widget : public ComObjectRoot, public IFoo, public IBar {
//   public:
//       static InterfaceMap<Widget> Interfaces() {
//           static const InterfaceEntry<Widget> map[] = {
//               Entry<Widget, IFoo>(), Entry<Widget, IBar>(),
//               Entry<Widget, IDispatch, IFoo>()};  // IDispatch stands for IFoo
//           return map;
//       }
//       ...IFoo and IBar operations; no IUnknown operations...
//   };
//
// ComObject<Widget> adds IUnknown for a plain object, AggregatedObject<Widget>
// for one whose identity is an outer object's; CreateComInstance picks one.
// The first entry gives the object's IUnknown. Counts are not interlocked:
// an object is used on one thread.
#include <new>
#include <span>

#include "platform/com/module_lock.h"
#include "platform/com/unknown.h"

namespace tervane {

template <typename Self> struct InterfaceEntry {
    const IID* iid;
    IUnknown* (*cast)(Self*);
};
template <typename Self> using InterfaceMap = std::span<const InterfaceEntry<Self>>;

// Via names the base through which an interface is reached when it is not a
// direct, unambiguous base (IDispatch of a class with several dual bases).
// Constant, so that the maps are filled before any code runs and read
// without a guard.
template <typename Self, typename Interface, typename Via = Interface>
constexpr InterfaceEntry<Self> Entry() {
    return {&Interface::iid, [](Self* self) -> IUnknown* {
                return static_cast<Interface*>(static_cast<Via*>(self));
            }};
}

class ComObjectRoot {
public:
    // Hooks for the class: run after the object has its identity and before
    // it is handed out, and before it is freed.
    HRESULT FinalConstruct() { return S_OK; }
    void FinalRelease() {}
    // Factories and other module-owned objects don't keep the module loaded.
    static constexpr bool kLocksModule = true;

    // The identity of the object: the outer object when aggregated.
    IUnknown* ControllingUnknown() const { return controlling_; }
    HRESULT OuterQueryInterface(REFIID riid, void** object) const {
        return controlling_->QueryInterface(riid, object);
    }

    // QueryInterface over Self's map; IUnknown is the first entry.
    template <typename Self> static HRESULT FindInterface(Self* self, REFIID riid, void** object) {
        if (object == nullptr)
            return E_POINTER;
        *object = nullptr;
        InterfaceMap<Self> map = Self::Interfaces();
        if (map.empty())
            return E_NOINTERFACE;
        IUnknown* found = nullptr;
        if (riid == IID_IUnknown) {
            found = map.front().cast(self);
        } else {
            for (const InterfaceEntry<Self>& entry : map)
                if (*entry.iid == riid) {
                    found = entry.cast(self);
                    break;
                }
        }
        if (found == nullptr)
            return E_NOINTERFACE;
        found->AddRef();
        *object = found;
        return S_OK;
    }

protected:
    ComObjectRoot() = default;
    ComObjectRoot(const ComObjectRoot&) = delete;
    ComObjectRoot& operator=(const ComObjectRoot&) = delete;

    // Set by the wrapper that gives the object its IUnknown.
    IUnknown* controlling_ = nullptr;
};

// IUnknown over Base's interface map with a plain count; Derived says, in
// LastReleased, what becomes of the object when the last reference goes.
template <typename Base, typename Derived> class CountedObject : public Base {
public:
    HRESULT QueryInterface(REFIID riid, void** object) override {
        return ComObjectRoot::FindInterface<Base>(this, riid, object);
    }
    ULONG AddRef() override { return ++refs_; }
    ULONG Release() override {
        ULONG left = --refs_;
        if (left == 0) {
            // Guards against a release from FinalRelease ending the object twice.
            refs_ = 1;
            this->FinalRelease();
            static_cast<Derived*>(this)->LastReleased();
        }
        return left;
    }

protected:
    using Base::Base;
    ULONG refs_ = 0;
};

template <typename Base> class ComObject final : public CountedObject<Base, ComObject<Base>> {
public:
    template <typename... Args>
    explicit ComObject(Args&&... args) : CountedObject<Base, ComObject<Base>>(args...) {
        this->controlling_ = Base::Interfaces().front().cast(this);
        if constexpr (Base::kLocksModule)
            LockModule();
    }
    ~ComObject() {
        if constexpr (Base::kLocksModule)
            UnlockModule();
    }

    void LastReleased() { delete this; }

    // A new object with one reference, constructed and FinalConstruct-ed.
    template <typename... Args> static HRESULT Create(ComObject** out, Args&&... args) {
        *out = nullptr;
        auto* object = new (std::nothrow) ComObject(args...);
        if (object == nullptr)
            return E_OUTOFMEMORY;
        object->AddRef();
        HRESULT hr = object->FinalConstruct();
        if (FAILED(hr)) {
            object->Release();
            return hr;
        }
        *out = object;
        return S_OK;
    }
};

// An aggregated object. Its own IUnknown (the one the outer object holds) is
// non-delegating and keeps the count; the interfaces of Base forward
// QueryInterface, AddRef and Release to the outer object.
template <typename Base> class AggregatedObject final : public IUnknown {
public:
    explicit AggregatedObject(IUnknown* outer) : inner_(outer) {
        if constexpr (Base::kLocksModule)
            LockModule();
    }
    ~AggregatedObject() {
        if constexpr (Base::kLocksModule)
            UnlockModule();
    }

    HRESULT QueryInterface(REFIID riid, void** object) override {
        if (object == nullptr)
            return E_POINTER;
        if (riid == IID_IUnknown) {
            *object = static_cast<IUnknown*>(this);
            AddRef();
            return S_OK;
        }
        return ComObjectRoot::FindInterface<Base>(&inner_, riid, object);
    }
    ULONG AddRef() override { return ++refs_; }
    ULONG Release() override {
        ULONG left = --refs_;
        if (left == 0) {
            refs_ = 1;
            inner_.FinalRelease();
            delete this;
        }
        return left;
    }

    Base& Inner() { return inner_; }

private:
    class Contained final : public Base {
    public:
        explicit Contained(IUnknown* outer) { this->controlling_ = outer; }
        HRESULT QueryInterface(REFIID riid, void** object) override {
            return this->controlling_->QueryInterface(riid, object);
        }
        ULONG AddRef() override { return this->controlling_->AddRef(); }
        ULONG Release() override { return this->controlling_->Release(); }
    };

    ULONG refs_ = 0;
    Contained inner_;
};

// What IClassFactory::CreateInstance does for Base: a plain object without an
// outer unknown, an aggregated one with it, which may only be asked for
// IUnknown.
template <typename Base> HRESULT CreateComInstance(IUnknown* outer, REFIID riid, void** object) {
    if (object == nullptr)
        return E_POINTER;
    *object = nullptr;
    if (outer != nullptr) {
        if (riid != IID_IUnknown)
            return CLASS_E_NOAGGREGATION;
        auto* aggregated = new (std::nothrow) AggregatedObject<Base>(outer);
        if (aggregated == nullptr)
            return E_OUTOFMEMORY;
        aggregated->AddRef();
        HRESULT hr = aggregated->Inner().FinalConstruct();
        if (SUCCEEDED(hr))
            hr = aggregated->QueryInterface(riid, object);
        aggregated->Release();
        return hr;
    }
    ComObject<Base>* plain = nullptr;
    HRESULT hr = ComObject<Base>::Create(&plain);
    if (FAILED(hr))
        return hr;
    hr = plain->QueryInterface(riid, object);
    plain->Release();
    return hr;
}

// What every class object of the module shares. Module-owned: it does not
// hold the module; a LockServer(TRUE) does.
class ClassFactoryRoot : public ComObjectRoot, public IClassFactory {
public:
    HRESULT LockServer(BOOL lock) override {
        if (lock)
            LockModule();
        else
            UnlockModule();
        return S_OK;
    }
};

// The class object of Base.
template <typename Base> class ClassFactory : public ClassFactoryRoot {
public:
    static constexpr bool kLocksModule = false;
    static InterfaceMap<ClassFactory> Interfaces() {
        static const InterfaceEntry<ClassFactory> map[] = {Entry<ClassFactory, IClassFactory>()};
        return map;
    }

    HRESULT CreateInstance(IUnknown* outer, REFIID riid, void** object) override {
        return CreateComInstance<Base>(outer, riid, object);
    }
};

// A new class object of Base with one reference.
template <typename Base> HRESULT CreateClassFactory(IClassFactory** out) {
    if (out == nullptr)
        return E_POINTER;
    ComObject<ClassFactory<Base>>* factory = nullptr;
    HRESULT hr = ComObject<ClassFactory<Base>>::Create(&factory);
    *out = factory;
    return hr;
}

// The module's one class object of Base, made on first use (the static's
// guarded initialisation serves as the factory's lock) and kept for the
// process. Null only if it could not be made. No new reference.
template <typename Base> IClassFactory* CachedClassFactory() {
    static IClassFactory* const factory = [] {
        IClassFactory* made = nullptr;
        CreateClassFactory<Base>(&made);
        return made;
    }();
    return factory;
}

} // namespace tervane
