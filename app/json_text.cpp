#include "app/json_text.h"

#include <cstdio>

#include "platform/locale/utf8.h"

namespace tervane::app {

namespace {

void AppendEscape(std::string& out, unsigned unit) {
    char escape[8];
    std::snprintf(escape, sizeof escape, "\\u%04x", unit);
    out += escape;
}

// Escapes what JSON requires; bytes from 0x80 on pass as they are.
void AppendAscii(std::string& out, char c) {
    switch (c) {
    case '"':
        out += "\\\"";
        break;
    case '\\':
        out += "\\\\";
        break;
    case '\b':
        out += "\\b";
        break;
    case '\f':
        out += "\\f";
        break;
    case '\n':
        out += "\\n";
        break;
    case '\r':
        out += "\\r";
        break;
    case '\t':
        out += "\\t";
        break;
    default:
        if (static_cast<unsigned char>(c) < 0x20)
            AppendEscape(out, static_cast<unsigned char>(c));
        else
            out += c;
    }
}

void AppendUtf8(std::string& out, char32_t c) {
    if (c < 0x80) {
        AppendAscii(out, static_cast<char>(c));
        return;
    }
    char bytes[4];
    out.append(bytes, static_cast<std::size_t>(locale::EncodeUtf8(c, bytes)));
}

} // namespace

std::string JsonString(std::u16string_view text) {
    std::string out = "\"";
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t u = text[i];
        bool high = u >= 0xD800 && u <= 0xDBFF;
        if (high && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF) {
            AppendUtf8(out, 0x10000 + ((u - 0xD800) << 10) + (text[i + 1] - 0xDC00));
            ++i;
        } else if (u >= 0xD800 && u <= 0xDFFF) {
            AppendEscape(out, u);
        } else {
            AppendUtf8(out, u);
        }
    }
    return out + "\"";
}

std::string JsonString(std::string_view text) {
    std::string out = "\"";
    for (char c : text)
        AppendAscii(out, c);
    return out + "\"";
}

} // namespace tervane::app
