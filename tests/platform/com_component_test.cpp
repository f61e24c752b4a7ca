// Counts and aggregation of components, and creation by class.
#include <gtest/gtest.h>

#include <vector>

#include "platform/com/class_objects.h"
#include "platform/com/com_ptr.h"
#include "platform/com/component.h"
#include "platform/com/dispatch.h"
#include "platform/com/pooled_factory.h"

namespace tervane {
namespace {

struct IAlpha : IUnknown {
    static constexpr IID iid = MakeGuid("{11111111-0000-0000-0000-000000000001}");
    virtual HRESULT Value(LONG* out) = 0;
};
struct IBeta : IDispatch {
    static constexpr IID iid = MakeGuid("{11111111-0000-0000-0000-000000000002}");
    virtual HRESULT Twice(LONG in, LONG* out) = 0;
};
struct INever : IUnknown {
    static constexpr IID iid = MakeGuid("{11111111-0000-0000-0000-000000000003}");
};

int g_alive = 0;

class Widget : public ComObjectRoot, public IAlpha, public DispatchWithoutTypeInfo<IBeta> {
public:
    static InterfaceMap<Widget> Interfaces() {
        static const InterfaceEntry<Widget> map[] = {
            Entry<Widget, IAlpha>(), Entry<Widget, IBeta>(), Entry<Widget, IDispatch, IBeta>()};
        return map;
    }
    Widget() { ++g_alive; }
    ~Widget() { --g_alive; }
    HRESULT Value(LONG* out) override {
        *out = 7;
        return S_OK;
    }
    HRESULT Twice(LONG in, LONG* out) override {
        *out = 2 * in;
        return S_OK;
    }
};

ULONG Count(IUnknown* unknown) {
    unknown->AddRef();
    return unknown->Release();
}

// A stand-in outer object: the factory only looks at whether one is given.
struct Outer : IUnknown {
    HRESULT QueryInterface(REFIID, void** object) override {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG AddRef() override { return 2; }
    ULONG Release() override { return 1; }
};

TEST(Component, FactoryRefusesAggregationForOtherInterfaces) {
    Outer outer;
    struct Case {
        IUnknown* outer;
        const IID* iid;
        HRESULT expected;
    };
    const Case cases[] = {
        {nullptr, &IAlpha::iid, S_OK},
        {nullptr, &INever::iid, E_NOINTERFACE},
        {&outer, &IID_IUnknown, S_OK},
        {&outer, &IAlpha::iid, CLASS_E_NOAGGREGATION},
    };
    ComPtr<IClassFactory> factory;
    ASSERT_EQ(CreateClassFactory<Widget>(factory.Receive()), S_OK);
    LONG locks = ModuleLockCount();
    for (const Case& c : cases) {
        void* object = &outer;
        EXPECT_EQ(factory->CreateInstance(c.outer, *c.iid, &object), c.expected)
            << GuidToString(*c.iid);
        EXPECT_EQ(object == nullptr, FAILED(c.expected));
        if (object)
            static_cast<IUnknown*>(object)->Release();
    }
    EXPECT_EQ(g_alive, 0) << "every object made was released";
    EXPECT_EQ(factory->CreateInstance(nullptr, IAlpha::iid, nullptr), E_POINTER);
    EXPECT_EQ(factory->LockServer(TRUE), S_OK);
    EXPECT_EQ(ModuleLockCount(), locks + 1);
    EXPECT_EQ(factory->LockServer(FALSE), S_OK);
    EXPECT_EQ(ModuleLockCount(), locks);
}

// A recycled object: its value shows whether it was cleared.
class Counter : public ComObjectRoot, public IAlpha {
public:
    static InterfaceMap<Counter> Interfaces() {
        static const InterfaceEntry<Counter> map[] = {Entry<Counter, IAlpha>()};
        return map;
    }
    HRESULT Value(LONG* out) override {
        *out = value_++;
        return S_OK;
    }
    void Clear() { value_ = 0; }

private:
    LONG value_ = 0;
};

TEST(Component, PooledObjectsComeBackClearedAndHoldTheModuleWhileAlive) {
    const LONG locks = ModuleLockCount();
    IClassFactory* factory = CachedPooledClassFactory<Counter>();
    ASSERT_NE(factory, nullptr);
    EXPECT_EQ(CachedPooledClassFactory<Counter>(), factory);
    EXPECT_EQ(ModuleLockCount(), locks) << "a cached factory holds no lock";

    std::vector<ComPtr<IAlpha>> live(PooledClassFactory<Counter>::kKept + 3);
    for (auto& item : live) {
        ASSERT_EQ(factory->CreateInstance(nullptr, IAlpha::iid, item.ReceiveVoid()), S_OK);
        LONG value = -1;
        item->Value(&value);
        EXPECT_EQ(value, 0) << "every object starts cleared";
        item->Value(&value);
    }
    EXPECT_EQ(ModuleLockCount(), locks + static_cast<LONG>(live.size()));
    live.clear();
    EXPECT_EQ(ModuleLockCount(), locks);
    EXPECT_EQ(PooledClassFactory<Counter>::Kept(), PooledClassFactory<Counter>::kKept);

    ComPtr<IUnknown> again;
    ASSERT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, again.ReceiveVoid()), S_OK);
    ComPtr<IAlpha> alpha;
    ASSERT_EQ(again.As(alpha), S_OK);
    LONG value = -1;
    alpha->Value(&value);
    EXPECT_EQ(value, 0);
    EXPECT_EQ(Count(alpha.get()), 2u);
    EXPECT_NE(PooledClassFactory<Counter>::Kept(), PooledClassFactory<Counter>::kKept)
        << "taken from the pool, not made anew";
}

} // namespace
} // namespace tervane
