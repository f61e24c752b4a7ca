#pragma once
// A class object that recycles the objects it made. For small objects that a
// caller makes and frees by the thousand, such as the items that carry one
// event each: a released object goes back to its class object's pool of this
// thread and comes out again as new, cleared by Base::Clear(). An aggregated
// object is made and freed as CreateComInstance does it.
#include <cstddef>
#include <new>
#include <utility>

#include "platform/com/component.h"

namespace tervane {

template <typename Base> class PooledClassFactory;

template <typename Base> class PooledObject final : public CountedObject<Base, PooledObject<Base>> {
public:
    PooledObject() { this->controlling_ = Base::Interfaces().front().cast(this); }

    void LastReleased() {
        this->refs_ = 0;
        PooledClassFactory<Base>::Recycle(this);
    }

private:
    friend class PooledClassFactory<Base>;
    PooledObject* nextFree_ = nullptr;
};

template <typename Base> class PooledClassFactory : public ClassFactoryRoot {
public:
    static constexpr bool kLocksModule = false;
    // Objects kept per thread; more are freed.
    static constexpr std::size_t kKept = 64;

    static InterfaceMap<PooledClassFactory> Interfaces() {
        static const InterfaceEntry<PooledClassFactory> map[] = {
            Entry<PooledClassFactory, IClassFactory>()};
        return map;
    }

    HRESULT CreateInstance(IUnknown* outer, REFIID riid, void** object) override {
        if (object == nullptr)
            return E_POINTER;
        *object = nullptr;
        if (outer != nullptr) [[unlikely]]
            return CreateAggregated(outer, riid, object);
        PooledObject<Base>* made = Take();
        if (made == nullptr)
            return E_OUTOFMEMORY;
        made->AddRef();
        HRESULT hr = made->FinalConstruct();
        if (SUCCEEDED(hr))
            hr = made->QueryInterface(riid, object);
        made->Release();
        return hr;
    }

    // Aggregated objects are not pooled; kept out of the common path.
    [[gnu::noinline]] static HRESULT CreateAggregated(IUnknown* outer, REFIID riid, void** object) {
        return CreateComInstance<Base>(outer, riid, object);
    }

    // Objects waiting in this thread's pool.
    static std::size_t Kept() { return pool.count; }

private:
    friend class PooledObject<Base>;

    // Plain data, reached without a call; the keeper, installed when the
    // first object is kept, frees the kept objects when the thread ends.
    struct Pool {
        PooledObject<Base>* head;
        std::size_t count;
        bool closed;
    };
    struct Keeper {
        bool installed = false;
        ~Keeper() {
            pool.closed = true;
            while (pool.head)
                delete std::exchange(pool.head, pool.head->nextFree_);
            pool.count = 0;
        }
    };
    static inline constinit thread_local Pool pool = {};
    static inline thread_local Keeper keeper;

    // A live object holds the module as one made by ComObject would.
    static PooledObject<Base>* Take() {
        PooledObject<Base>* made = pool.head;
        if (made != nullptr) {
            pool.head = made->nextFree_;
            made->nextFree_ = nullptr;
            --pool.count;
        } else {
            made = new (std::nothrow) PooledObject<Base>();
            if (made == nullptr)
                return nullptr;
        }
        if constexpr (Base::kLocksModule)
            LockModule();
        return made;
    }
    static void Recycle(PooledObject<Base>* object) {
        if constexpr (Base::kLocksModule)
            UnlockModule();
        if (pool.closed || pool.count >= kKept) {
            delete object;
            return;
        }
        object->Clear();
        if (pool.count == 0)
            keeper.installed = true;
        object->nextFree_ = pool.head;
        pool.head = object;
        ++pool.count;
    }
};

// The module's one pooled class object of Base, made on first use and kept
// for the process. No new reference.
template <typename Base> IClassFactory* CachedPooledClassFactory() {
    static IClassFactory* const factory = [] {
        ComObject<PooledClassFactory<Base>>* made = nullptr;
        ComObject<PooledClassFactory<Base>>::Create(&made);
        return static_cast<IClassFactory*>(made);
    }();
    return factory;
}

} // namespace tervane
