#include "backward/tervane_writer.h"

#include <chrono>
#include <cstdio>
#include <stdexcept>

#include "frame/diagnostics/exceptions.h"
#include "frame/diagnostics/report_error.h"
#include "frame/diagnostics/trace.h"
#include "host/items.h"
#include "label/pieces/tag_predicates.h"
#include "platform/com/class_objects.h"
#include "platform/com/com_error.h"
#include "platform/locale/code_pages.h"

namespace tervane {

namespace {

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

// The clock as _ftime64 fills it: seconds and milliseconds since the epoch.
void ReadClock(std::int64_t& seconds, std::uint16_t& millis) {
    auto now = std::chrono::system_clock::now().time_since_epoch();
    auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
    seconds = ms / 1000;
    millis = static_cast<std::uint16_t>(ms % 1000);
}

std::u16string Take(BSTR text) {
    return Bstr::Attach(text).str();
}

HRESULT Report(const char* text, HRESULT hr) {
    return ReportError(CLSID_TervaneWriter, text, IFileWriter::iid, hr);
}

} // namespace

InterfaceMap<TervaneWriter> TervaneWriter::Interfaces() {
    static const InterfaceEntry<TervaneWriter> map[] = {
        Entry<TervaneWriter, ITervaneWriter, DispatchWithoutTypeInfo<ITervaneWriter>>(),
        Entry<TervaneWriter, IDispatch, DispatchWithoutTypeInfo<IEvents>>(),
        Entry<TervaneWriter, ISupportErrorInfo>(),
        Entry<TervaneWriter, IEvents, DispatchWithoutTypeInfo<IEvents>>(),
        Entry<TervaneWriter, IFileWriter>(),
    };
    return map;
}

HRESULT TervaneWriter::Initialize(BSTR path, BSTR, LONG language, LONG, LONG, IFilterHost* host,
                                  IEvents** events) {
    try {
        ReadClock(time_.seconds, time_.millis);
        initializeTime_ = time_.seconds * 1000 + time_.millis;
        Trace("\n\n########## Backward conversion started ###########\n\n");
        const std::u16string target = path ? std::u16string(path, SysStringLen(path)) : u"";
        Trace("Target file \"" + Narrow(target) + "\" is saved.\n");
        Trace(TimeLine("Start of initialize time is -> ", time_.seconds, time_.millis));
        host_ = ComPtr<IFilterHost>(host);
        updater_.Initialise(target, language);

        IEvents* own = nullptr;
        HRESULT hr = OuterQueryInterface(IEvents::iid, reinterpret_cast<void**>(&own));
        if (FAILED(hr) && hr != E_NOINTERFACE)
            _com_issue_error(hr);
        if (own == nullptr)
            _com_issue_error(E_POINTER);
        events_ = own;
        own->Release();
        if (events == nullptr)
            _com_issue_error(E_POINTER);
        events_->QueryInterface(IEvents::iid, reinterpret_cast<void**>(events));

        parser_.SetBatchSize(2);
        keepText_ = started_ = ended_ = inSegment_ = 0;
        return S_OK;
    } catch (...) {
        return Report("Unexpected error when accessing [TervaneWriter.Initialize ]", E_FAIL);
    }
}

HRESULT TervaneWriter::raw_StartOfInput(IDocumentInfo* info) {
    try {
        BSTR path = nullptr;
        if (info != nullptr)
            info->get_SourceFile(&path);
        const std::u16string source = Take(path);
        parser_.InitialiseParserSettings(source);
        updater_.SetSourceFile(source);
        started_ = 1;
        return S_OK;
    } catch (const IOException& error) {
        pendingError_ = error.message;
        return E_ACCESSDENIED;
    } catch (...) {
        return Report("Unexpected error when accessing Initialize method [TervaneWriter ].",
                      E_FAIL);
    }
}

HRESULT TervaneWriter::raw_Tag(ITag* item) {
    try {
        if (item == nullptr)
            throw std::invalid_argument("no tag");
        LONG start = 0, end = 0, inlineMark = 0;
        item->get_StartTag(&start);
        item->get_EndTag(&end);
        item->get_Inline(&inlineMark);
        BSTR name = nullptr, text = nullptr;
        item->get_TagName(&name);
        item->get_TagText(&text);
        auto piece = std::make_unique<CTagLabelPiece>(Take(name), Take(text), inlineMark ? 0 : 1,
                                                      inlineMark ? 1 : 0, end, start, inlineMark);
        const TagDescriptor& tag = piece->tag;
        if (tag.startTag == 1 && tag.endTag == 0 && tag.inlineTag == 0)
            inSegment_ = 0;
        if (IsSegmentOpen(tag))
            keepText_ = 1;
        else if (tag.endTag == 1 && IsSegmentClose(tag))
            keepText_ = 0;
        // Structural tags are kept wherever they stand, inline ones only in a wanted element.
        if (tag.endTag == 0 && tag.startTag == 0 && tag.inlineTag == 1 && keepText_ == 0)
            return S_OK;
        updater_.pieces.push_back(std::move(piece));
        return S_OK;
    } catch (...) {
        return Report("Unexpected error when accessing Initialize method [TervaneWriter ].",
                      E_FAIL);
    }
}

HRESULT TervaneWriter::raw_Text(IText* item) {
    try {
        if (keepText_ == 0)
            return S_OK;
        if (item == nullptr)
            throw std::invalid_argument("no text");
        BSTR value = nullptr;
        item->get_Text(&value);
        Bstr text = Bstr::Attach(value);
        if (text.length() == 0)
            return S_OK;
        auto piece = std::make_unique<CTextLabelPiece>(WideText(text.view()));
        piece->inSegment = inSegment_;
        updater_.pieces.push_back(std::move(piece));
        return S_OK;
    } catch (...) {
        return Report("Unexpected error when accessing raw_Text  method [TervaneWriter ].", E_FAIL);
    }
}

HRESULT TervaneWriter::Pump(LONG_PTR cookie) {
    if (!host_)
        _com_issue_error(E_POINTER);
    return host_->raw_Pump(cookie);
}

HRESULT TervaneWriter::raw_Write(LONG_PTR cookie) {
    try {
        return Write(cookie);
    } catch (const CVerificationException& error) {
        updater_.RemoveTemporaryFile();
        return Report(error.message, E_FAIL);
    } catch (const IOException&) {
        return Report(KeepText(pendingError_), E_ACCESSDENIED);
    } catch (const TervaneFilterException& error) {
        updater_.RemoveTemporaryFile();
        return Report(error.message, E_FAIL);
    } catch (...) {
        updater_.RemoveTemporaryFile();
        return Report("Unexpected exception occured accessing [TervaneWriter.raw_Write]", E_FAIL);
    }
}

HRESULT TervaneWriter::Write(LONG_PTR cookie) {
    if (started_ == 0) {
        if (Pump(cookie) == E_FAIL)
            throw IOException(KeepText(pendingError_), "TervaneWriter", "raw_Write");
        return S_OK;
    }
    if (parser_.Resources().empty()) {
        ReadClock(time_.seconds, time_.millis);
        writeStartTime_ = time_.seconds * 1000 + time_.millis;
        Trace(TimeLine("Start of writer time is -> ", time_.seconds, time_.millis));
        parser_.EnumerateResources();
        parser_.ExtractResources(0);
        Pump(cookie);
        return S_OK;
    }
    if (ended_ == 0) {
        Pump(cookie);
        return S_OK;
    }
    ResourceRefs resources;
    resources.reserve(parser_.Resources().size());
    for (const auto& resource : parser_.Resources())
        resources.push_back(resource.get());
    updater_.UpdateResources(resources, 1);
    ReadClock(time_.seconds, time_.millis);
    Trace(TimeLine("End of Writer time is -> ", time_.seconds, time_.millis));
    endTime_ = time_.seconds * 1000 + time_.millis;
    elapsed_ = static_cast<float>(static_cast<double>(endTime_ - initializeTime_) * 0.001);
    Trace(ElapsedLine("\nThe total time from initalize to end of Writer is -> %f \n", elapsed_));
    elapsed_ = static_cast<float>(static_cast<double>(endTime_ - writeStartTime_) * 0.001);
    Trace(ElapsedLine("\nThe total time from start of writer to end of writer is -> %f \n",
                      elapsed_));
    Trace("\n\n########## Backward conversion finished ###########\n\n");
    Pump(cookie);
    return S_OK;
}

void RegisterTervaneWriterClass() {
    static const bool registered = [] {
        RegisterComponentProgIds();
        IClassFactory* factory = CachedClassFactory<TervaneWriter>();
        DWORD cookie = 0;
        return factory != nullptr && SUCCEEDED(CoRegisterClassObject(CLSID_TervaneWriter, factory,
                                                                     CLSCTX_ALL, 0, &cookie));
    }();
    (void)registered;
}

} // namespace tervane
