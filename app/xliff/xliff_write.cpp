#include <cstdio>
#include <memory>
#include <stdexcept>

#include <libxml/xmlwriter.h>

#include "app/xliff/xliff_io.h"
#include "platform/locale/utf8.h"

namespace tervane::xliff {

namespace {

// A character that XML 1.0 cannot hold, even as a reference: it travels as a
// placeholder of the kind x-char with its code point.
bool XmlCannotHold(char16_t c) {
    return (c < 0x20 && c != 0x09 && c != 0x0A && c != 0x0D) || c == 0xFFFE || c == 0xFFFF;
}

bool IsSurrogate(char16_t c) {
    return c >= 0xD800 && c <= 0xDFFF;
}

class XmlOut {
public:
    XmlOut() : buffer_(xmlBufferCreate(), xmlBufferFree) {
        if (!buffer_)
            throw std::bad_alloc();
        // The default scheme grows by what is added, copying the whole
        // document again and again.
        xmlBufferSetAllocationScheme(buffer_.get(), XML_BUFFER_ALLOC_DOUBLEIT);
        writer_.reset(xmlNewTextWriterMemory(buffer_.get(), 0));
        if (!writer_)
            throw std::bad_alloc();
    }

    void Start(const char* name) { Check(xmlTextWriterStartElement(W(), X(name))); }
    void StartRoot(const char* name, const char* ns) {
        Check(xmlTextWriterStartElementNS(W(), nullptr, X(name), X(ns)));
    }
    void Attr(const char* name, const std::string& value) {
        Check(xmlTextWriterWriteAttribute(W(), X(name), X(value.c_str())));
    }
    void End() { Check(xmlTextWriterEndElement(W())); }
    void Text(const std::string& utf8) { Check(xmlTextWriterWriteString(W(), X(utf8.c_str()))); }
    void Line(int depth) { Text("\n" + std::string(depth, ' ')); }

    std::string Finish() {
        Check(xmlTextWriterEndDocument(W()));
        Check(xmlTextWriterFlush(W()));
        writer_.reset();
        return std::string(reinterpret_cast<const char*>(xmlBufferContent(buffer_.get())),
                           static_cast<std::size_t>(xmlBufferLength(buffer_.get())));
    }

    void Declaration() { Check(xmlTextWriterStartDocument(W(), "1.0", "UTF-8", nullptr)); }

private:
    static const xmlChar* X(const char* text) { return reinterpret_cast<const xmlChar*>(text); }
    xmlTextWriterPtr W() { return writer_.get(); }
    static void Check(int result) {
        if (result < 0)
            throw std::runtime_error("libxml2 could not write the document");
    }

    std::unique_ptr<xmlBuffer, void (*)(xmlBufferPtr)> buffer_;
    std::unique_ptr<xmlTextWriter, void (*)(xmlTextWriterPtr)> writer_{nullptr, xmlFreeTextWriter};
};

std::string Utf8(std::u16string_view text) {
    std::string out;
    locale::AppendUtf8(out, text);
    return out;
}

// Numbers the placeholders of one unit: the target's take the number of the
// source's placeholder with the same code, in turn.
class PlaceholderIds {
public:
    std::string Next(const std::u16string& code, bool target) {
        if (target) {
            for (auto& [known, id, used] : source_) {
                if (!used && known == code) {
                    used = true;
                    return std::to_string(id);
                }
            }
        }
        int id = ++count_;
        if (!target)
            source_.push_back({code, id, false});
        return std::to_string(id);
    }
    std::string Fresh() { return std::to_string(++count_); }

private:
    struct Known {
        std::u16string code;
        int id;
        bool used;
    };
    std::vector<Known> source_;
    int count_ = 0;
};

void WritePlaceholder(XmlOut& out, const std::string& id, const std::u16string& code) {
    out.Start("ph");
    out.Attr("id", id);
    if (code == u"\\n")
        out.Attr("ctype", "lb");
    out.Text(Utf8(code));
    out.End();
}

void WriteContent(XmlOut& out, const Content& content, PlaceholderIds& ids, bool target) {
    for (const Piece& piece : content) {
        if (piece.placeholder) {
            WritePlaceholder(out, ids.Next(piece.text, target), piece.text);
            continue;
        }
        std::u16string run;
        const std::u16string& text = piece.text;
        for (std::size_t i = 0; i < text.size(); ++i) {
            char16_t c = text[i];
            bool pair = IsSurrogate(c) && c < 0xDC00 && i + 1 < text.size() &&
                        text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF;
            if (pair) {
                run += c;
                run += text[++i];
            } else if (XmlCannotHold(c) || IsSurrogate(c)) {
                out.Text(Utf8(run));
                run.clear();
                char code[16];
                std::snprintf(code, sizeof code, "U+%04X", static_cast<unsigned>(c));
                out.Start("ph");
                out.Attr("id", ids.Fresh());
                out.Attr("ctype", "x-char");
                out.Text(code);
                out.End();
            } else {
                run += c;
            }
        }
        out.Text(Utf8(run));
    }
}

void WriteUnit(XmlOut& out, const Unit& unit) {
    out.Line(6);
    out.Start("trans-unit");
    out.Attr("id", unit.id);
    if (!unit.resname.empty())
        out.Attr("resname", unit.resname);
    if (!unit.restype.empty())
        out.Attr("restype", unit.restype);
    if (!unit.translate)
        out.Attr("translate", "no");
    if (!unit.coord.empty()) {
        out.Attr("coord", unit.coord);
        out.Attr("reformat", "no");
    }
    out.Attr("xml:space", "preserve");
    PlaceholderIds ids;
    out.Line(8);
    out.Start("source");
    WriteContent(out, unit.source, ids, false);
    out.End();
    if (unit.target) {
        out.Line(8);
        out.Start("target");
        if (!unit.state.empty())
            out.Attr("state", unit.state);
        WriteContent(out, *unit.target, ids, true);
        out.End();
    }
    out.Line(6);
    out.End();
}

} // namespace

std::string WriteXliff(const Document& document, const std::string& toolVersion) {
    XmlOut out;
    out.Declaration();
    out.StartRoot("xliff", kXliffNamespace);
    out.Attr("version", "1.2");
    out.Line(1);
    out.Start("file");
    out.Attr("original", document.original);
    out.Attr("datatype", "winres");
    out.Attr("source-language", document.sourceLanguage);
    if (!document.targetLanguage.empty())
        out.Attr("target-language", document.targetLanguage);
    out.Attr("tool-id", "tervane");
    out.Line(2);
    out.Start("header");
    out.Line(3);
    out.Start("skl");
    out.Start("external-file");
    out.Attr("href", document.original);
    out.Attr("crc", "sha256:" + document.sha256);
    out.End();
    out.End();
    out.Line(3);
    out.Start("count-group");
    out.Attr("name", "source-file");
    out.Start("count");
    out.Attr("count-type", "x-file-size");
    out.Attr("unit", "x-byte");
    out.Text(std::to_string(document.size));
    out.End();
    out.End();
    out.Line(3);
    out.Start("tool");
    out.Attr("tool-id", "tervane");
    out.Attr("tool-name", "tervane");
    out.Attr("tool-version", toolVersion);
    out.End();
    out.Line(2);
    out.End(); // header
    out.Line(2);
    out.Start("body");
    for (const Group& group : document.groups) {
        if (group.units.empty())
            continue;
        out.Line(4);
        out.Start("group");
        out.Attr("id", group.id);
        if (!group.resname.empty())
            out.Attr("resname", group.resname);
        out.Attr("restype", group.restype);
        for (const Unit& unit : group.units)
            WriteUnit(out, unit);
        out.Line(4);
        out.End();
    }
    out.Line(2);
    out.End(); // body
    out.Line(1);
    out.End(); // file
    out.Line(0);
    out.End(); // xliff
    std::string bytes = out.Finish();
    if (bytes.empty() || bytes.back() != '\n')
        bytes += '\n';
    return bytes;
}

} // namespace tervane::xliff
