// The event log, CheckLastError, ReportError, the trace sink and the
// exception family.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

#include "frame/component_ids.h"
#include "frame/diagnostics/caught_failure.h"
#include "frame/diagnostics/event_logging.h"
#include "frame/diagnostics/exceptions.h"
#include "frame/diagnostics/report_error.h"
#include "frame/diagnostics/trace.h"
#include "platform/com/class_objects.h"
#include "platform/com/com_error.h"
#include "platform/com/com_ptr.h"
#include "platform/com/error_info.h"
#include "platform/diag/event_log.h"
#include "platform/diag/trace_sink.h"
#include "platform/win32/last_error.h"
#include "tests/support/fixtures.h"

namespace tervane {
namespace {

std::string Slurp(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

// Points the event log at a fresh file for one test.
class EventLogFile : public ::testing::Test {
protected:
    void SetUp() override {
        saved_ = std::getenv(kEventLogVariable) ? std::getenv(kEventLogVariable) : "";
        path_ = test::TempDir() + "/events.log";
        setenv(kEventLogVariable, path_.c_str(), 1);
    }
    void TearDown() override { setenv(kEventLogVariable, saved_.c_str(), 1); }
    std::string Log() const { return Slurp(path_); }
    std::string path_;
    std::string saved_;
};

TEST_F(EventLogFile, CheckLastErrorLogsOnlyASetError) {
    struct Case {
        DWORD lastError;
        int result;
        const char* logged;
    };
    const Case cases[] = {
        {0, 0, nullptr},
        {ERROR_ACCESS_DENIED, 1, "Access is denied."},
        {ERROR_BAD_EXE_FORMAT, 1, "%1 is not a valid Win32 application."},
        {0x7FFF, 1, ""}, // no text: the event is still written
    };
    for (const Case& c : cases) {
        std::size_t before = Log().size();
        SetLastError(c.lastError);
        EXPECT_EQ(CheckLastError("CResourceParserImpl::GetResourceBuffer"), c.result);
        std::string added = Log().substr(before);
        if (c.logged == nullptr) {
            EXPECT_EQ(added, "");
            continue;
        }
        EXPECT_NE(added.find(std::string(" error 0xC0000004 category 0: ") + c.logged + "\n"),
                  std::string::npos)
            << added;
        EXPECT_NE(added.find("TervaneFilter["), std::string::npos) << "source from string 100";
        EXPECT_EQ(added.find("GetResourceBuffer"), std::string::npos) << "context is not logged";
        EXPECT_EQ(added.find('\r'), std::string::npos);
        EXPECT_EQ(added.back(), '\n');
    }
    setenv(kEventLogVariable, "/proc/tervane-no-such-dir/events.log", 1);
    SetLastError(ERROR_ACCESS_DENIED);
    EXPECT_EQ(CheckLastError("Win32API::UpdateResource"), 1) << "an unwritable log changes nothing";
}

TEST_F(EventLogFile, LogEventHonoursTheLevelAndKeepsOneEventPerLine) {
    LogEvent(EVENTLOG_ERROR_TYPE, "first line\r\nsecond line\r\n");
    LogEvent(EVENTLOG_WARNING_TYPE, "a warning");
    LogEvent(8, "above the level");
    std::string log = Log();
    EXPECT_NE(log.find(" error 0xC0000004 category 0: first line\n\tsecond line\n"),
              std::string::npos)
        << log;
    EXPECT_NE(log.find(" warning 0xC0000004 category 0: a warning\n"), std::string::npos);
    EXPECT_EQ(log.find("above the level"), std::string::npos);
}

struct Reported {
    std::u16string description;
    std::u16string source;
    GUID guid{};
};

std::optional<Reported> TakeErrorInfo() {
    ComPtr<IErrorInfo> info;
    if (GetErrorInfo(0, info.Receive()) != S_OK)
        return std::nullopt;
    Reported r;
    Bstr text;
    info->GetDescription(text.Receive());
    r.description = text.str();
    info->GetSource(text.Receive());
    r.source = text.str();
    info->GetGUID(&r.guid);
    return r;
}

constexpr CLSID kClass = MakeGuid("{33333333-0000-0000-0000-0000000000C1}");
constexpr CLSID kUnnamedClass = MakeGuid("{33333333-0000-0000-0000-0000000000C2}");
constexpr IID kInterface = MakeGuid("{33333333-0000-0000-0000-000000000001}");

TEST(ReportError, FillsTheThreadsErrorInformation) {
    RegisterProgId(kClass, u"Zelkor.TervaneTest.1");
    struct Case {
        const CLSID* clsid;
        std::string text;
        HRESULT hr;
        std::u16string description;
        std::u16string source;
    };
    const Case cases[] = {
        {&kClass, "Unexpected error", E_FAIL, u"Unexpected error", u"Zelkor.TervaneTest.1"},
        {&kClass, "Gr\xC3\xB6\xC3\x9F\x65\n2", E_FAIL, u"Gr\u00F6\u00DFe\n2",
         u"Zelkor.TervaneTest.1"},
        {&kUnnamedClass, "no source", E_FAIL, u"no source", u""},
        {&CLSID_TervaneVerifier, "verify", E_FAIL, u"verify", u"TervaneFilter.TervaneVerifier.1"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ReportError(*c.clsid, c.text.c_str(), kInterface, c.hr), c.hr);
        auto reported = TakeErrorInfo();
        ASSERT_TRUE(reported);
        EXPECT_EQ(reported->description, c.description);
        EXPECT_EQ(reported->source, c.source);
        EXPECT_EQ(reported->guid, kInterface);
    }

    EXPECT_EQ(ReportError(kClass, u"wide text", kInterface, E_FAIL), E_FAIL);
    EXPECT_EQ(TakeErrorInfo()->description, u"wide text");
    EXPECT_FALSE(TakeErrorInfo()) << "the information is taken once";
}

TEST(ReportCaughtFailure, EachKindOfThrowGivesItsTextAndResult) {
    struct Case {
        void (*raise)();
        std::u16string description;
        HRESULT result;
    };
    const Case cases[] = {
        {[] { throw CParserException("bad dialog"); }, u"bad dialog", E_ACCESSDENIED},
        {[] { throw CVerificationException("Error: tag missing", "C", "M"); },
         u"Error: tag missing", E_ACCESSDENIED},
        {[] { _com_issue_error(E_POINTER); }, u"Invalid pointer", E_ACCESSDENIED},
        {[] { throw std::runtime_error("hidden"); }, u"Unexpected error when accessing Test.",
         E_FAIL},
        {[] { throw 42; }, u"Unexpected error when accessing Test.", E_FAIL},
    };
    for (const Case& c : cases) {
        HRESULT hr = S_OK;
        try {
            c.raise();
        } catch (...) {
            hr = ReportCaughtFailure(kClass, kInterface, u"Unexpected error when accessing Test.",
                                     E_ACCESSDENIED);
        }
        EXPECT_EQ(hr, c.result);
        auto reported = TakeErrorInfo();
        ASSERT_TRUE(reported);
        EXPECT_EQ(reported->description, c.description);
        EXPECT_EQ(reported->guid, kInterface);
    }
}

TEST(Trace, GoesToTheAttachedFileOnly) {
    std::string path = test::TempDir() + "/trace.log";
    Trace("before any sink");
    ASSERT_TRUE(AttachTraceFile(path));
    EXPECT_TRUE(TraceAttached());
    Trace("Initialising parser");
    Trace("CodePage of source language is -> 1252 \n");
    Trace("");
    DetachTrace();
    Trace("after the sink");
    EXPECT_FALSE(TraceAttached());
    EXPECT_EQ(Slurp(path), "Initialising parser\nCodePage of source language is -> 1252 \n\n");
    EXPECT_FALSE(AttachTraceFile("/proc/tervane-no-such-dir/trace.log"));
}

} // namespace
} // namespace tervane
