#include <cstring>
#include <memory>
#include <unordered_set>

#include <libxml/parser.h>
#include <libxml/tree.h>

#include "app/xliff/xliff_io.h"
#include "platform/locale/utf8.h"

namespace tervane::xliff {

namespace {

int LineOf(const xmlNode* node) {
    return static_cast<int>(xmlGetLineNo(node));
}

bool IsXliff(const xmlNode* node, const char* name) {
    return node && node->type == XML_ELEMENT_NODE && node->ns && node->ns->href &&
           std::strcmp(reinterpret_cast<const char*>(node->ns->href), kXliffNamespace) == 0 &&
           std::strcmp(reinterpret_cast<const char*>(node->name), name) == 0;
}

std::string Name(const xmlNode* node) {
    return reinterpret_cast<const char*>(node->name);
}

std::string Attribute(const xmlNode* node, const char* name) {
    xmlChar* value = xmlGetProp(node, reinterpret_cast<const xmlChar*>(name));
    if (value == nullptr)
        return {};
    std::string text(reinterpret_cast<const char*>(value));
    xmlFree(value);
    return text;
}

std::string TextOf(const xmlNode* node) {
    xmlChar* value = xmlNodeGetContent(node);
    if (value == nullptr)
        return {};
    std::string text(reinterpret_cast<const char*>(value));
    xmlFree(value);
    return text;
}

std::u16string Utf16(std::string_view text) {
    std::u16string out;
    locale::AppendUtf16(out, text);
    return out;
}

void AppendText(Content& content, std::u16string_view text) {
    if (text.empty())
        return;
    if (content.empty() || content.back().placeholder)
        content.push_back({false, {}});
    content.back().text += text;
}

class Reader {
public:
    Document Read(const xmlNode* root) {
        if (!IsXliff(root, "xliff"))
            throw DocumentError("this is no XLIFF 1.2 document (the root must be <xliff> in " +
                                    std::string(kXliffNamespace) + ")",
                                {}, root ? LineOf(root) : 0);
        const xmlNode* file = nullptr;
        for (const xmlNode* child = root->children; child; child = child->next) {
            if (!IsXliff(child, "file"))
                continue;
            if (file)
                throw DocumentError("the document holds more than one <file>", {}, LineOf(child));
            file = child;
        }
        if (!file)
            throw DocumentError("the document holds no <file>", {}, LineOf(root));
        Document document;
        document.original = Attribute(file, "original");
        document.sourceLanguage = Attribute(file, "source-language");
        document.targetLanguage = Attribute(file, "target-language");
        document.line = LineOf(file);
        for (const xmlNode* child = file->children; child; child = child->next) {
            if (IsXliff(child, "header"))
                Header(child, document);
            else if (IsXliff(child, "body"))
                Body(child, document, kNone);
        }
        return document;
    }

private:
    void Header(const xmlNode* header, Document& document) {
        for (const xmlNode* child = header->children; child; child = child->next) {
            if (IsXliff(child, "skl")) {
                for (const xmlNode* ref = child->children; ref; ref = ref->next) {
                    std::string crc = IsXliff(ref, "external-file") ? Attribute(ref, "crc") : "";
                    if (crc.rfind("sha256:", 0) == 0)
                        document.sha256 = crc.substr(7);
                }
            } else if (IsXliff(child, "count-group") && Attribute(child, "name") == "source-file") {
                for (const xmlNode* count = child->children; count; count = count->next) {
                    if (IsXliff(count, "count") && Attribute(count, "count-type") == "x-file-size")
                        document.size = std::strtoull(TextOf(count).c_str(), nullptr, 10);
                }
            }
        }
    }

    // Units belong to their innermost group; those outside any to one of
    // their own.
    void Body(const xmlNode* parent, Document& document, std::size_t group) {
        for (const xmlNode* child = parent->children; child; child = child->next) {
            if (IsXliff(child, "group")) {
                document.groups.push_back({Attribute(child, "id"),
                                           Attribute(child, "restype"),
                                           Attribute(child, "resname"),
                                           {},
                                           LineOf(child)});
                Body(child, document, document.groups.size() - 1);
            } else if (IsXliff(child, "trans-unit")) {
                if (group == kNone) {
                    document.groups.push_back({});
                    group = document.groups.size() - 1;
                }
                Unit unit = ReadUnit(child);
                document.groups[group].units.push_back(std::move(unit));
            }
        }
    }

    Unit ReadUnit(const xmlNode* node) {
        Unit unit;
        unit.id = Attribute(node, "id");
        unit.line = LineOf(node);
        if (unit.id.empty())
            throw DocumentError("a <trans-unit> has no id", {}, unit.line);
        if (!ids_.insert(unit.id).second)
            throw DocumentError("the id stands on two units", unit.id, unit.line);
        unit.restype = Attribute(node, "restype");
        unit.resname = Attribute(node, "resname");
        unit.coord = Attribute(node, "coord");
        unit.translate = Attribute(node, "translate") != "no";
        bool source = false;
        for (const xmlNode* child = node->children; child; child = child->next) {
            if (IsXliff(child, "source")) {
                unit.source = ReadContent(child, unit.id);
                unit.sourceLine = LineOf(child);
                source = true;
            } else if (IsXliff(child, "target")) {
                unit.target = ReadContent(child, unit.id);
                unit.state = Attribute(child, "state");
                unit.targetLine = LineOf(child);
            }
        }
        if (!source)
            throw DocumentError("the unit has no <source>", unit.id, unit.line);
        return unit;
    }

    Content ReadContent(const xmlNode* parent, const std::string& id) {
        Content content;
        AddContent(parent, id, content);
        return content;
    }

    void AddContent(const xmlNode* parent, const std::string& id, Content& content) {
        for (const xmlNode* child = parent->children; child; child = child->next) {
            if (child->type == XML_TEXT_NODE || child->type == XML_CDATA_SECTION_NODE) {
                AppendText(content, Utf16(reinterpret_cast<const char*>(child->content)));
            } else if (child->type != XML_ELEMENT_NODE) {
                continue;
            } else if (IsXliff(child, "ph")) {
                Placeholder(child, id, content);
            } else if (IsXliff(child, "mrk") || IsXliff(child, "g")) {
                // Marks of tools (segments, terms) carry text, not codes.
                AddContent(child, id, content);
            } else {
                throw DocumentError("the inline element <" + Name(child) +
                                        "> has no place in this document: codes travel as <ph>",
                                    id, LineOf(child));
            }
        }
    }

    void Placeholder(const xmlNode* node, const std::string& id, Content& content) {
        std::string code = TextOf(node);
        if (Attribute(node, "ctype") == "x-char") {
            unsigned long value = 0;
            if (code.size() < 3 || code.compare(0, 2, "U+") != 0 ||
                (value = std::strtoul(code.c_str() + 2, nullptr, 16)) > 0xFFFF)
                throw DocumentError("the character placeholder '" + code +
                                        "' is not of the form U+XXXX",
                                    id, LineOf(node));
            AppendText(content, std::u16string(1, static_cast<char16_t>(value)));
            return;
        }
        if (code.empty())
            throw DocumentError("a <ph> holds no code", id, LineOf(node));
        content.push_back({true, Utf16(code)});
    }

    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    std::unordered_set<std::string> ids_;
};

struct FreeDocument {
    void operator()(xmlDoc* doc) const { xmlFreeDoc(doc); }
};

} // namespace

Document ReadXliff(std::string_view bytes, const std::string& name) {
    xmlResetLastError();
    std::unique_ptr<xmlDoc, FreeDocument> doc(xmlReadMemory(
        bytes.data(), static_cast<int>(bytes.size()), name.c_str(), nullptr,
        XML_PARSE_NONET | XML_PARSE_BIG_LINES | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
    if (!doc) {
        const xmlError* error = xmlGetLastError();
        std::string message = error && error->message ? error->message : "unreadable";
        while (!message.empty() && (message.back() == '\n' || message.back() == ' '))
            message.pop_back();
        throw DocumentError("malformed XML: " + message, {}, error ? error->line : 0);
    }
    return Reader().Read(xmlDocGetRootElement(doc.get()));
}

} // namespace tervane::xliff
