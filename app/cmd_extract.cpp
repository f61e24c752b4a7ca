// tervane extract [--events | --document] [--filter] [-o OUT] [--trace FILE]
// FILE: drives the forward converter as a host framework does (Initialize,
// then raw_Parse) and writes what the host received. With --filter the
// converter feeds the filter stage, wired and run as a framework runs a chain.
#include <cstdio>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "app/commands.h"
#include "app/event_recorder.h"
#include "app/items.h"
#include "frame/tervane_parser.h"
#include "platform/com/class_objects.h"
#include "platform/com/com_ptr.h"
#include "platform/com/error_info.h"
#include "platform/diag/event_log.h"
#include "platform/diag/trace_sink.h"
#include "platform/files/file_replace.h"
#include "platform/locale/code_pages.h"
#include "stream/interactive_parser.h"

namespace tervane::app {

namespace {

const char* const kUsage =
    "Usage: tervane extract [--events | --document] [--filter] [-o OUT] [--trace FILE] FILE\n";

// The error information the component left on this thread.
std::string ErrorText(HRESULT hr) {
    ComPtr<IErrorInfo> info;
    if (GetErrorInfo(0, info.Receive()) == S_OK && info) {
        BSTR description = nullptr;
        info->GetDescription(&description);
        Bstr owned = Bstr::Attach(description);
        if (owned.length())
            return Narrow(owned.view(), CP_UTF8);
    }
    char text[64];
    std::snprintf(text, sizeof text, "the conversion failed (0x%08X)", static_cast<unsigned>(hr));
    return text;
}

// Initialize, then raw_Parse: the parser pushes the whole document into sink.
HRESULT Parse(const std::string& file, IFilterHost* host, IEvents* sink) {
    ComPtr<IFileParser> parser;
    HRESULT hr = CoCreateInstance(CLSID_TervaneParser, nullptr, CLSCTX_ALL, IFileParser::iid,
                                  parser.ReceiveVoid());
    if (SUCCEEDED(hr)) {
        Bstr path(Widen(file, CP_UTF8));
        hr = parser->Initialize(path.get(), nullptr, 0, 0, 0, host, sink);
        if (SUCCEEDED(hr))
            hr = parser->raw_Parse(0);
    }
    return hr;
}

// The chain parser -> filter stage -> sink, wired from its end: the filter
// returns its IEvents, which becomes the parser's sink. The host runs the
// filter, whose pump makes the host run the parser.
HRESULT RunChain(const std::string& file, ComObject<ProgressHost>* host, IEvents* sink) {
    RegisterTervaneInteractiveParserClass();
    ComPtr<IFilterComponent> filter;
    HRESULT hr = CoCreateInstance(CLSID_TervaneInteractiveParser, nullptr, CLSCTX_ALL,
                                  IFilterComponent::iid, filter.ReceiveVoid());
    if (FAILED(hr))
        return hr;
    ComPtr<IEvents> filterEvents;
    hr = filter->Initialize(nullptr, nullptr, 0, host, sink, filterEvents.Receive());
    if (FAILED(hr))
        return hr;
    HRESULT parsed = S_OK;
    bool delivered = false;
    host->OnPump([&](LONG_PTR) {
        // One document: the first pump delivers it whole, later ones nothing.
        if (!delivered) {
            delivered = true;
            parsed = Parse(file, host, filterEvents.get());
        }
        return FAILED(parsed) ? E_FAIL : S_OK;
    });
    hr = filter->raw_Run(0);
    host->OnPump(nullptr);
    filter->raw_Close();
    return FAILED(hr) ? hr : parsed;
}

} // namespace

int RunExtract(const Args& args) {
    bool events = false, filter = false;
    std::string out, trace, file;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a == "--events") {
            events = true;
        } else if (a == "--document") {
            events = false;
        } else if (a == "--filter") {
            filter = true;
        } else if ((a == "-o" || a == "--trace") && i + 1 < args.size()) {
            (a == "-o" ? out : trace) = args[++i];
        } else if (!a.empty() && a[0] == '-') {
            std::fprintf(stderr, "tervane extract: unknown option '%s'\n%s", a.c_str(), kUsage);
            return 2;
        } else if (file.empty()) {
            file = a;
        } else {
            std::fprintf(stderr, "tervane extract: only one FILE\n%s", kUsage);
            return 2;
        }
    }
    if (file.empty()) {
        std::fprintf(stderr, "%s", kUsage);
        return 2;
    }
    if (!trace.empty() && !AttachTraceFile(trace)) {
        std::fprintf(stderr, "tervane extract: cannot write the trace file %s\n", trace.c_str());
        return 1;
    }

    RegisterItemClasses();
    RegisterTervaneParserClass();
    auto log = std::make_shared<EventOutput>(events);
    ComPtr<ComObject<RecordingSink>> sink;
    ComPtr<ComObject<ProgressHost>> host;
    ComObject<RecordingSink>::Create(sink.Receive());
    ComObject<ProgressHost>::Create(host.Receive());
    sink->Attach(log);
    host->Attach(log, ::isatty(STDERR_FILENO) != 0);

    HRESULT hr =
        filter ? RunChain(file, host.get(), sink.get()) : Parse(file, host.get(), sink.get());
    host->FinishBar();
    std::string failure = FAILED(hr) ? ErrorText(hr) : std::string();

    // What was received is written even when the conversion failed.
    std::string_view rendered = log->Rendered();
    if (out.empty()) {
        std::fwrite(rendered.data(), 1, rendered.size(), stdout);
        std::fflush(stdout);
    } else if (auto error = files::ReplaceFileContent(
                   out,
                   Bytes(reinterpret_cast<const std::uint8_t*>(rendered.data()), rendered.size()),
                   0644)) {
        std::fprintf(stderr, "tervane extract: cannot write %s\n", out.c_str());
        return 1;
    }
    if (FAILED(hr)) {
        std::fprintf(stderr, "tervane extract: %s: %s\n", file.c_str(), failure.c_str());
        std::string logPath = EventLogPath();
        if (!logPath.empty())
            std::fprintf(stderr, "The system's messages are in %s\n", logPath.c_str());
        return 1;
    }
    return 0;
}

} // namespace tervane::app
