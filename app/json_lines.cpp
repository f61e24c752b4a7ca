#include "app/json_lines.h"

#include <charconv>
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

void AppendString(std::string& out, std::u16string_view text) {
    out += '"';
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
    out += '"';
}

void AppendString(std::string& out, std::string_view text) {
    out += '"';
    for (char c : text)
        AppendAscii(out, c);
    out += '"';
}

} // namespace

void JsonLine::Key(std::string_view key) {
    if (finished_) {
        line_.assign("{");
        finished_ = false;
    } else {
        line_ += ", ";
    }
    AppendString(line_, key);
    line_ += ": ";
}

JsonLine& JsonLine::Text(std::string_view key, std::u16string_view text) {
    Key(key);
    AppendString(line_, text);
    return *this;
}

JsonLine& JsonLine::Text(std::string_view key, std::string_view utf8) {
    Key(key);
    AppendString(line_, utf8);
    return *this;
}

JsonLine& JsonLine::Number(std::string_view key, std::int64_t value) {
    Key(key);
    char digits[24];
    auto [end, error] = std::to_chars(digits, digits + sizeof digits, value);
    (void)error; // 24 places hold any 64-bit number
    line_.append(digits, end);
    return *this;
}

JsonLine& JsonLine::Bool(std::string_view key, bool value) {
    Key(key);
    line_ += value ? "true" : "false";
    return *this;
}

std::string_view JsonLine::Finish() {
    if (finished_)
        line_.assign("{");
    line_ += "}\n";
    finished_ = true;
    return line_;
}

} // namespace tervane::app
