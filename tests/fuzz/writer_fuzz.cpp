// Random event streams into the writer against a real source file: the tags
// of the source's own document, fed with random texts and broken by dropped,
// added, foreign and inline tags. Whatever the stream, the source is never
// changed, and a failed run leaves neither a target nor a work file.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>
#include <vector>

#include "backward/tervane_writer.h"
#include "frame/diagnostics/exceptions.h"
#include "frame/resource_parser_impl.h"
#include "platform/locale/code_pages.h"
#include "tests/backward/fake_items.h"

namespace {

using namespace tervane;
namespace fs = std::filesystem;

using Tag = test::FakeTag;
using Text = test::FakeText;
using Info = test::FakeInfo;

// One pump: the whole stream, the input opened first on its own.
class Host : public ComObjectRoot, public DispatchWithoutTypeInfo<IFilterHost> {
public:
    static InterfaceMap<Host> Interfaces() {
        static const InterfaceEntry<Host> map[] = {Entry<Host, IFilterHost>()};
        return map;
    }
    HRESULT raw_Progress(LONG) override { return S_OK; }
    HRESULT raw_Pump(LONG_PTR) override;

    IEvents* sink = nullptr;
    std::u16string source;
    const std::uint8_t* data = nullptr;
    std::size_t size = 0;
    int pumps = 0;
};

std::vector<std::uint8_t> FileBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

struct Source {
    std::string dir, path;
    std::vector<std::uint8_t> bytes;
    TagList tags; // the source's document, tags only
};

const Source& TheSource() {
    static const Source source = [] {
        Source made;
        made.dir = fs::temp_directory_path() / ("tervane-writer-fuzz-" + std::to_string(getpid()));
        fs::create_directories(made.dir);
        made.path = made.dir + "/src.dll";
        fs::copy_file(TERVANE_FUZZ_SOURCE, made.path, fs::copy_options::overwrite_existing);
        CResourceParserImpl engine;
        engine.InitialiseParser(Widen(made.path));
        engine.EnumerateResources();
        engine.ExtractResources(0);
        ResourceRefs resources;
        for (const auto& resource : engine.Resources())
            resources.push_back(resource.get());
        CResourceVerifier::BuildExpectedTags(resources, made.tags);
        made.bytes = FileBytes(made.path);
        return made;
    }();
    return source;
}

const char16_t* const kTexts[] = {u"",   u"x",   u"100%", u"R&D",  u"\u00E9t\u00E9 \u4E2D",
                                  u"\t", u" a ", u"%s",   u"\r\n", u"\xD800"};
const char16_t* const kInline[] = {u"%s", u"%d", u"%1", u"%2", u"&", u"\\n", u"+", u","};

HRESULT Host::raw_Pump(LONG_PTR) {
    if (pumps++ != 0)
        return S_OK;
    ComPtr<ComObject<Info>> info;
    ComObject<Info>::Create(info.Receive());
    info->path = source;
    sink->raw_StartOfInput(info.get());
    ComPtr<ComObject<Tag>> tag;
    ComObject<Tag>::Create(tag.Receive());
    ComPtr<ComObject<Text>> text;
    ComObject<Text>::Create(text.Receive());
    const TagList& tags = TheSource().tags;
    auto sendTag = [&](const TagDescriptor& descriptor) {
        tag->tag = descriptor;
        sink->raw_Tag(tag.get());
    };
    auto sendText = [&](std::u16string value) {
        text->text = std::move(value);
        sink->raw_Text(text.get());
    };
    std::size_t next = 0;
    for (std::size_t at = 0; at < size; ++at) {
        const std::uint8_t b = data[at];
        const std::uint8_t arg = b >> 3;
        switch (b & 7) {
        case 0:
        case 1:
        case 2:
            if (next < tags.size()) {
                sendTag(tags[next].tag);
                if (tags[next].tag.startTag == 1)
                    sendText(kTexts[arg % std::size(kTexts)]);
                ++next;
            }
            break;
        case 3:
            ++next;
            break;
        case 4: {
            TagDescriptor inlineTag;
            inlineTag.name = inlineTag.tagText = kInline[arg % std::size(kInline)];
            inlineTag.inlineTag = 1;
            sendTag(inlineTag);
            break;
        }
        case 5:
            if (!tags.empty())
                sendTag(tags[(arg * 7u) % tags.size()].tag);
            break;
        case 6:
            sendText(std::u16string(arg * 61u, u'w'));
            break;
        default:
            if (arg & 1)
                sink->raw_StartOfSegment(nullptr);
            else
                sink->raw_EndOfSegment();
            break;
        }
    }
    for (; next < tags.size(); ++next) {
        sendTag(tags[next].tag);
        if (tags[next].tag.startTag == 1)
            sendText(u"t");
    }
    return sink->raw_EndOfInput();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Source& source = TheSource();
    const std::string target = source.dir + "/out.dll";
    fs::remove(target);
    ComPtr<ComObject<TervaneWriter>> writer;
    ComObject<TervaneWriter>::Create(writer.Receive());
    ComPtr<ComObject<Host>> host;
    ComObject<Host>::Create(host.Receive());
    host->source = Widen(source.path);
    host->data = data;
    host->size = size;
    ComPtr<IEvents> events;
    Bstr path(Widen(target));
    writer->Initialize(path.get(), nullptr, 0x40C, 0, 0, host.get(), events.Receive());
    host->sink = events.get();
    HRESULT hr = S_OK;
    for (int call = 0; call < 3 && SUCCEEDED(hr); ++call)
        hr = writer->raw_Write(0);
    host->sink = nullptr;
    if (FileBytes(source.path) != source.bytes)
        std::abort(); // the source changed
    for (const auto& entry : fs::directory_iterator(source.dir)) {
        const std::string name = entry.path().filename();
        if (name.rfind("~zelkor.update.", 0) == 0)
            std::abort(); // a work file was left behind
        if (name == "out.dll" && FAILED(hr))
            std::abort(); // a failed run wrote its target
    }
    return 0;
}
