#include "frame/tervane_parser.h"

#include <chrono>
#include <cstdio>
#include <stdexcept>

#include "frame/diagnostics/caught_failure.h"
#include "frame/diagnostics/exceptions.h"
#include "frame/diagnostics/report_error.h"
#include "frame/diagnostics/trace.h"
#include "host/items.h"
#include "platform/com/class_objects.h"
#include "platform/com/com_error.h"
#include "platform/com/com_ptr.h"
#include "platform/locale/code_pages.h"

namespace tervane {

namespace {

const char* const kParsingFailed = "An Error has occured during parsing..!\n Please look at the "
                                   "system event application log for further details.";
const char* const kOpeningFailed = "An Error has occured during opening the Executable file..!\n"
                                   "Please look at the system event application log for further "
                                   "details.";

std::string TimeLine(const char* prefix, std::int64_t seconds, unsigned millis) {
    char line[160];
    std::snprintf(line, sizeof line, "%s%u secs and %u millies \n", prefix,
                  static_cast<unsigned>(seconds), millis);
    return line;
}

std::string ElapsedLine(const char* format, float seconds) {
    char line[160];
    std::snprintf(line, sizeof line, format, static_cast<double>(seconds));
    return line;
}

} // namespace

InterfaceMap<TervaneParser> TervaneParser::Interfaces() {
    static const InterfaceEntry<TervaneParser> map[] = {
        Entry<TervaneParser, ITervaneParser>(),
        Entry<TervaneParser, IDispatch, ITervaneParser>(),
        Entry<TervaneParser, ISupportErrorInfo>(),
        Entry<TervaneParser, IFileParser>(),
    };
    return map;
}

// The clock as _ftime64 fills it: seconds and milliseconds since the epoch.
static void ReadClock(std::int64_t& seconds, std::uint16_t& millis) {
    auto now = std::chrono::system_clock::now().time_since_epoch();
    auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
    seconds = ms / 1000;
    millis = static_cast<std::uint16_t>(ms % 1000);
}

HRESULT TervaneParser::Initialize(BSTR path, BSTR, LONG, LONG, LONG, IFilterHost* host,
                                  IEvents* sink) {
    try {
        ReadClock(time_.seconds, time_.millis);
        initializeStart_ = time_.seconds * 1000 + time_.millis;
        std::u16string widePath = path ? std::u16string(path, SysStringLen(path)) : u"";
        Trace("\n\n########## Forward conversion started ###########\n\n");
        Trace("File \"" + Narrow(widePath) + "\" is opened\n");
        Trace(TimeLine("Start of initialize time is -> ", time_.seconds, time_.millis));
        if (engine_.InitialiseParser(widePath) != 0)
            throw TervaneFilterException("LoadLibraryExW function fails");
        engine_.SetBatchSize(4);
        engine_.SetSink(sink);
        engine_.EnumerateResources();
        if (!engine_.Resources().empty())
            engine_.SetHost(host);
        return S_OK;
    } catch (const TervaneFilterException&) {
        // The system's own text of the failure went to the event log.
        return ReportError(CLSID_TervaneParser, kParsingFailed, IFileParser::iid, E_FAIL);
    } catch (...) {
        return ReportError(CLSID_TervaneParser,
                           u"Unexpected error when accessing Initialize method.", IFileParser::iid,
                           E_FAIL);
    }
}

HRESULT TervaneParser::raw_Parse(LONG_PTR) {
    kept_ = S_OK;
    try {
        return Parse();
    } catch (const CParserException& error) {
        return ReportError(CLSID_TervaneParser, error.message, IFileParser::iid, E_FAIL);
    } catch (const TervaneFilterException& error) {
        return ReportError(CLSID_TervaneParser, error.message, IFileParser::iid, E_FAIL);
    } catch (...) {
        ReportError(CLSID_TervaneParser, u"Unexpected error when accessing raw_Parse method.",
                    IFileParser::iid, kept_);
        return FAILED(kept_) ? kept_ : E_FAIL;
    }
}

HRESULT TervaneParser::Parse() {
    ReadClock(time_.seconds, time_.millis);
    parseStart_ = time_.seconds * 1000 + time_.millis;
    Trace(TimeLine("Start of parser time is -> ", time_.seconds, time_.millis));

    IEvents* sink = engine_.Sink();
    if (sink == nullptr)
        throw std::invalid_argument("no sink");
    ComPtr<IDocumentInfo> info;
    {
        ComPtr<IUnknown> unknown;
        if (SUCCEEDED(CoCreateInstance(CLSID_DocumentInfo, nullptr, CLSCTX_ALL, IID_IUnknown,
                                       unknown.ReceiveVoid())) &&
            SUCCEEDED(OleRun(unknown.get())))
            unknown.As(info);
    }
    HRESULT hr = sink->raw_StartOfInput(info.get());
    if (FAILED(hr))
        _com_issue_errorex(hr, sink, IEvents::iid);
    if (engine_.HasHost()) {
        hr = engine_.Host()->raw_Progress(0);
        if (FAILED(hr))
            _com_issue_errorex(hr, engine_.Host(), IFilterHost::iid);
    }
    HRESULT result = engine_.ExtractResources(1);
    kept_ = result;
    if (engine_.HasHost()) {
        hr = engine_.Host()->raw_Progress(100);
        if (FAILED(hr))
            _com_issue_errorex(hr, engine_.Host(), IFilterHost::iid);
        engine_.ReleaseHost();
    }
    hr = sink->raw_EndOfInput();
    if (FAILED(hr))
        _com_issue_errorex(hr, sink, IEvents::iid);
    if (result == E_ACCESSDENIED)
        return ReportError(CLSID_TervaneParser, kOpeningFailed, IFileParser::iid, result);

    ReadClock(time_.seconds, time_.millis);
    Trace(TimeLine("End of parser time is -> ", time_.seconds, time_.millis));
    parseEnd_ = time_.seconds * 1000 + time_.millis;
    elapsed_ = static_cast<float>(static_cast<double>(parseEnd_ - initializeStart_) * 0.001);
    Trace(ElapsedLine("\nThe total time from initalize to end of parser is -> %f \n", elapsed_));
    elapsed_ = static_cast<float>(static_cast<double>(parseEnd_ - parseStart_) * 0.001);
    Trace(ElapsedLine("\nThe total time from start of parser to end of parser is -> %f \n",
                      elapsed_));
    Trace("\n\n########## Forward conversion finished ###########\n\n");
    return S_OK;
}

void RegisterTervaneParserClass() {
    static const bool registered = [] {
        RegisterComponentProgIds();
        IClassFactory* factory = CachedClassFactory<TervaneParser>();
        DWORD cookie = 0;
        return factory != nullptr && SUCCEEDED(CoRegisterClassObject(CLSID_TervaneParser, factory,
                                                                     CLSCTX_ALL, 0, &cookie));
    }();
    (void)registered;
}

} // namespace tervane
