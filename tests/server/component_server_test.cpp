// The classes as a host makes them: through the registered, loaded module, by
// class identifier and by ProgID, plain and aggregated.
#include <vector>

#include "frame/component_ids.h"
#include "host/editor.h"
#include "host/events.h"
#include "host/filter_components.h"
#include "platform/com/class_objects.h"
#include "platform/com/com_ptr.h"
#include "platform/com/error_info.h"
#include "tests/server/server_fixture.h"

namespace tervane::test {
namespace {

struct ClassRow {
    const char* name;
    const CLSID& clsid;
    const char16_t* progId;
    const char16_t* versionIndependentProgId;
    const IID& own;
    std::vector<const IID*> answers; // besides IUnknown and IDispatch
    const IID* dispatchIs;
};

const std::vector<ClassRow>& Classes() {
    static const std::vector<ClassRow> rows = {
        {"TervaneParser",
         CLSID_TervaneParser,
         u"Zelkor.TervaneParser.1",
         u"Zelkor.TervaneParser",
         IID_ITervaneParser,
         {&IID_ITervaneParser, &IID_ISupportErrorInfo, &IFileParser::iid},
         &IID_ITervaneParser},
        {"TervaneWriter",
         CLSID_TervaneWriter,
         u"Zelkor.TervaneWriter.1",
         u"Zelkor.TervaneWriter",
         IID_ITervaneWriter,
         {&IID_ITervaneWriter, &IID_ISupportErrorInfo, &IEvents::iid, &IFileWriter::iid},
         &IEvents::iid},
        {"TervanePreviewWriter",
         CLSID_TervanePreviewWriter,
         u"Zelkor.TervanePreviewWriter.1",
         u"Zelkor.TervanePreviewWriter",
         IID_ITervanePreviewWriter,
         {&IID_ITervanePreviewWriter, &IID_ISupportErrorInfo, &IEvents::iid,
          &IPreviewFileWriter::iid},
         &IEvents::iid},
        {"TervaneScanner",
         CLSID_TervaneScanner,
         u"Zelkor.TervaneScanner.1",
         u"Zelkor.TervaneScanner",
         IID_ITervaneScanner,
         {&IID_ITervaneScanner, &IFileScanner::iid},
         &IID_ITervaneScanner},
        {"TervaneInteractiveParser",
         CLSID_TervaneInteractiveParser,
         u"Zelkor.TervaneInteractiveParser.1",
         u"Zelkor.TervaneInteractiveParser",
         IID_ITervaneInteractiveParser,
         {&IID_ITervaneInteractiveParser, &IEvents::iid, &IFilterComponent::iid},
         &IEvents::iid},
        {"TervaneVerifier",
         CLSID_TervaneVerifier,
         u"TervaneFilter.TervaneVerifier.1",
         u"TervaneFilter.TervaneVerifier",
         IID_ITervaneVerifier,
         {&IID_ITervaneVerifier, &IID_ISupportErrorInfo, &IKestrinPlugIn::iid,
          &IVerificationPlugIn::iid},
         &IID_ITervaneVerifier},
    };
    return rows;
}

// Every interface any class might be asked for.
const IID* const kAsked[] = {
    &IID_ITervaneParser,
    &IID_ITervaneWriter,
    &IID_ITervanePreviewWriter,
    &IID_ITervaneScanner,
    &IID_ITervaneInteractiveParser,
    &IID_ITervaneVerifier,
    &IID_ISupportErrorInfo,
    &IFileParser::iid,
    &IFileWriter::iid,
    &IPreviewFileWriter::iid,
    &IFileScanner::iid,
    &IFilterComponent::iid,
    &IEvents::iid,
    &IKestrinPlugIn::iid,
    &IVerificationPlugIn::iid,
    &IFilterHost::iid,
    &IID_IClassFactory,
};

bool Answers(const ClassRow& row, const IID& iid) {
    for (const IID* own : row.answers)
        if (*own == iid)
            return true;
    return false;
}

// Which shared object holds the code of an interface pointer.
std::string ObjectFileOf(IUnknown* object) {
    Dl_info info{};
    ::dladdr(*reinterpret_cast<void**>(object), &info);
    return info.dli_fname ? info.dli_fname : "";
}

class Components : public ServerTest {
protected:
    void SetUp() override {
        ServerTest::SetUp();
        ASSERT_EQ(Call("DllRegisterServer"), S_OK);
    }
};

TEST_F(Components, EachClassIsMadeByIdentifierAndProgIdThroughTheModule) {
    for (const ClassRow& row : Classes()) {
        SCOPED_TRACE(row.name);
        for (const char16_t* progId : {row.progId, row.versionIndependentProgId}) {
            CLSID found{};
            ASSERT_EQ(CLSIDFromProgID(progId, &found), S_OK);
            EXPECT_EQ(found, row.clsid);
        }
        ComPtr<IUnknown> object;
        ASSERT_EQ(
            CoCreateInstance(row.clsid, nullptr, CLSCTX_ALL, IID_IUnknown, object.ReceiveVoid()),
            S_OK);
        EXPECT_NE(ObjectFileOf(object.get()).find("libtervanefilter"), std::string::npos);
    }
    CLSID none{};
    EXPECT_EQ(CLSIDFromProgID(u"Zelkor.NoSuchClass", &none), CO_E_CLASSSTRING);
}

TEST_F(Components, EachClassAnswersForExactlyItsInterfaces) {
    for (const ClassRow& row : Classes()) {
        SCOPED_TRACE(row.name);
        ComPtr<IUnknown> object;
        ASSERT_EQ(
            CoCreateInstance(row.clsid, nullptr, CLSCTX_ALL, IID_IUnknown, object.ReceiveVoid()),
            S_OK);
        for (const IID* iid : kAsked) {
            ComPtr<IUnknown> asked;
            const HRESULT hr = object->QueryInterface(*iid, asked.ReceiveVoid());
            EXPECT_EQ(hr, Answers(row, *iid) ? S_OK : E_NOINTERFACE) << GuidToString(*iid);
        }
        // IDispatch is the implementation the table names.
        ComPtr<IUnknown> dispatch, named;
        ASSERT_EQ(object->QueryInterface(IID_IDispatch, dispatch.ReceiveVoid()), S_OK);
        ASSERT_EQ(object->QueryInterface(*row.dispatchIs, named.ReceiveVoid()), S_OK);
        EXPECT_EQ(dispatch.get(), named.get());

        ComPtr<ISupportErrorInfo> errors;
        if (object->QueryInterface(IID_ISupportErrorInfo, errors.ReceiveVoid()) == S_OK) {
            for (const IID* iid : kAsked)
                EXPECT_EQ(errors->InterfaceSupportsErrorInfo(*iid),
                          *iid == row.own ? S_OK : S_FALSE)
                    << GuidToString(*iid);
        }
    }
}

TEST_F(Components, TheModuleCanUnloadOnlyWithoutLiveObjectsOrLocks) {
    EXPECT_EQ(Call("DllCanUnloadNow"), S_OK);
    for (const ClassRow& row : Classes()) {
        SCOPED_TRACE(row.name);
        ComPtr<IClassFactory> factory;
        ASSERT_EQ(CoGetClassObject(row.clsid, CLSCTX_ALL, nullptr, IID_IClassFactory,
                                   factory.ReceiveVoid()),
                  S_OK);
        EXPECT_EQ(Call("DllCanUnloadNow"), S_OK) << "a class object alone holds nothing";
        {
            ComPtr<IUnknown> first, second;
            factory->CreateInstance(nullptr, IID_IUnknown, first.ReceiveVoid());
            factory->CreateInstance(nullptr, IID_IUnknown, second.ReceiveVoid());
            EXPECT_EQ(Call("DllCanUnloadNow"), S_FALSE);
            first.Reset();
            EXPECT_EQ(Call("DllCanUnloadNow"), S_FALSE) << "one object still lives";
        }
        EXPECT_EQ(Call("DllCanUnloadNow"), S_OK);
        factory->LockServer(TRUE);
        EXPECT_EQ(Call("DllCanUnloadNow"), S_FALSE);
        factory->LockServer(FALSE);
        EXPECT_EQ(Call("DllCanUnloadNow"), S_OK);
    }
}

// An outer object that aggregates one class and adds an interface of its own.
struct IOuterMark : IUnknown {
    static constexpr IID iid = MakeGuid("{5B0E9E51-3C8A-4F0B-9D7E-2F6A1C3B8D40}");
};

class Outer final : public IOuterMark {
public:
    HRESULT QueryInterface(REFIID riid, void** object) override {
        if (riid == IID_IUnknown || riid == IOuterMark::iid) {
            *object = static_cast<IOuterMark*>(this);
            AddRef();
            return S_OK;
        }
        return inner_ ? inner_->QueryInterface(riid, object) : E_NOINTERFACE;
    }
    ULONG AddRef() override { return ++refs_; }
    ULONG Release() override { return --refs_; }

    ULONG refs_ = 1;
    IUnknown* inner_ = nullptr;
};

IUnknown* Identity(IUnknown* object) {
    IUnknown* unknown = nullptr;
    object->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&unknown));
    unknown->Release();
    return unknown;
}

TEST_F(Components, AggregatedClassesFollowTheRulesOfIdentity) {
    for (const ClassRow& row : Classes()) {
        SCOPED_TRACE(row.name);
        Outer outer;
        ComPtr<IUnknown> refused;
        EXPECT_EQ(CoCreateInstance(row.clsid, &outer, CLSCTX_ALL, *row.answers.front(),
                                   refused.ReceiveVoid()),
                  CLASS_E_NOAGGREGATION);
        ASSERT_EQ(CoCreateInstance(row.clsid, &outer, CLSCTX_ALL, IID_IUnknown,
                                   reinterpret_cast<void**>(&outer.inner_)),
                  S_OK);
        EXPECT_EQ(outer.refs_, 1u) << "the inner object holds no reference to the outer";
        EXPECT_EQ(Call("DllCanUnloadNow"), S_FALSE);

        // The inner unknown answers for itself, not for the outer object.
        EXPECT_EQ(Identity(outer.inner_), outer.inner_);
        for (const IID* iid : kAsked) {
            IUnknown* through = nullptr;
            const HRESULT hr = outer.QueryInterface(*iid, reinterpret_cast<void**>(&through));
            ASSERT_EQ(hr, Answers(row, *iid) ? S_OK : E_NOINTERFACE) << GuidToString(*iid);
            if (FAILED(hr))
                continue;
            // Identity: every interface leads to the outer's IUnknown.
            EXPECT_EQ(Identity(through), static_cast<IUnknown*>(&outer));
            // Symmetry and transitivity: from each interface to every other,
            // to the outer's own, and back.
            for (const IID* other : row.answers) {
                IUnknown* next = nullptr;
                ASSERT_EQ(through->QueryInterface(*other, reinterpret_cast<void**>(&next)), S_OK);
                IUnknown* back = nullptr;
                EXPECT_EQ(next->QueryInterface(*iid, reinterpret_cast<void**>(&back)), S_OK);
                IUnknown* mark = nullptr;
                EXPECT_EQ(next->QueryInterface(IOuterMark::iid, reinterpret_cast<void**>(&mark)),
                          S_OK);
                for (IUnknown* taken : {back, mark, next})
                    if (taken)
                        taken->Release();
            }
            through->Release();
        }
        EXPECT_EQ(outer.refs_, 1u) << "every reference through the inner went back";
        EXPECT_EQ(outer.inner_->Release(), 0u);
        outer.inner_ = nullptr;
        EXPECT_EQ(Call("DllCanUnloadNow"), S_OK);
    }
}

} // namespace
} // namespace tervane::test
