// Messages of _com_error and the thread's error information.
#include <gtest/gtest.h>

#include "platform/com/com_error.h"
#include "platform/com/component.h"

namespace tervane {
namespace {

TEST(ComError, MessageRule) {
    struct Case {
        HRESULT hr;
        const char* message;
    };
    const Case cases[] = {
        {E_FAIL, "Unspecified error"},
        {E_ACCESSDENIED, "Access is denied."},
        {HRESULT_FROM_WIN32(2), "The system cannot find the file specified."},
        {MakeHresult(0x80040201), "IDispatch error #1"},
        {MakeHresult(0x8004FFFF), "IDispatch error #65023"},
        {MakeHresult(0x80040200), "Unknown error 0x80040200"},
        {MakeHresult(0xDEADBEEF), "Unknown error 0xDEADBEEF"},
    };
    for (const Case& c : cases)
        EXPECT_STREQ(_com_error(c.hr).ErrorMessage(), c.message) << std::hex << c.hr;
    EXPECT_EQ(_com_error(MakeHresult(0x80040205)).WCode(), 5);
    EXPECT_EQ(_com_error(E_FAIL).WCode(), 0);
}

ComPtr<IErrorInfo> MakeInfo(const char16_t* description) {
    ComPtr<ICreateErrorInfo> create;
    EXPECT_EQ(CreateErrorInfo(create.Receive()), S_OK);
    create->SetDescription(const_cast<LPOLESTR>(description));
    create->SetSource(const_cast<LPOLESTR>(u"Zelkor.Test.1"));
    create->SetGUID(IID_IClassFactory);
    ComPtr<IErrorInfo> info;
    EXPECT_EQ(create.As(info), S_OK);
    return info;
}

TEST(ErrorInfo, IsTakenOnce) {
    ComPtr<IErrorInfo> info = MakeInfo(u"broken");
    ASSERT_EQ(SetErrorInfo(0, info.get()), S_OK);

    ComPtr<IErrorInfo> taken;
    ASSERT_EQ(GetErrorInfo(0, taken.Receive()), S_OK);
    EXPECT_EQ(taken, info);
    Bstr description;
    EXPECT_EQ(taken->GetDescription(description.Receive()), S_OK);
    EXPECT_EQ(description.str(), u"broken");
    GUID guid{};
    taken->GetGUID(&guid);
    EXPECT_EQ(guid, IID_IClassFactory);
    EXPECT_EQ(GetErrorInfo(0, taken.Receive()), S_FALSE);
    EXPECT_EQ(taken.get(), nullptr);
}

struct IReports : IUnknown {
    static constexpr IID iid = MakeGuid("{22222222-0000-0000-0000-000000000001}");
};
struct ISilent : IUnknown {
    static constexpr IID iid = MakeGuid("{22222222-0000-0000-0000-000000000002}");
};

class Reporter : public ComObjectRoot,
                 public IReports,
                 public ISilent,
                 public SupportErrorInfoFor<IReports::iid> {
public:
    static InterfaceMap<Reporter> Interfaces() {
        static const InterfaceEntry<Reporter> map[] = {Entry<Reporter, IReports>(),
                                                       Entry<Reporter, ISilent>(),
                                                       Entry<Reporter, ISupportErrorInfo>()};
        return map;
    }
};

TEST(ComError, IssueErrorExTakesInformationOnlyFromASupportingInterface) {
    ComPtr<IUnknown> reporter;
    ASSERT_EQ(CreateComInstance<Reporter>(nullptr, IID_IUnknown, reporter.ReceiveVoid()), S_OK);
    struct Case {
        const IID* iid;
        bool carriesInfo;
    };
    const Case cases[] = {{&IReports::iid, true}, {&ISilent::iid, false}};
    for (const Case& c : cases) {
        SetErrorInfo(0, MakeInfo(u"sink failed").get());
        try {
            _com_issue_errorex(E_ACCESSDENIED, reporter.get(), *c.iid);
            FAIL() << "no throw";
        } catch (const _com_error& e) {
            EXPECT_EQ(e.Error(), E_ACCESSDENIED);
            EXPECT_EQ(e.Description(), c.carriesInfo ? u"sink failed" : u"");
            EXPECT_EQ(e.Source(), c.carriesInfo ? u"Zelkor.Test.1" : u"");
            EXPECT_STREQ(e.ErrorMessage(), "Access is denied.");
        }
        SetErrorInfo(0, nullptr);
    }
}

} // namespace
} // namespace tervane
