#include "app/json_reader.h"

#include <charconv>
#include <cmath>
#include <cstdlib>

#include "platform/locale/utf8.h"

namespace tervane::app {

namespace {

class Reader {
public:
    explicit Reader(std::string_view text) : text_(text) {}

    ParsedJsonLine Object() {
        ParsedJsonLine line;
        Blank();
        if (!Take('{'))
            return Fail(std::move(line), "an object must start with '{'");
        Blank();
        if (Take('}'))
            return Finish(std::move(line));
        for (;;) {
            Blank();
            std::u16string key;
            if (!String(key))
                return Fail(std::move(line), error_.empty() ? "a key must be a string" : error_);
            Blank();
            if (!Take(':'))
                return Fail(std::move(line), "':' must follow a key");
            Blank();
            JsonValue value;
            if (!Value(value))
                return Fail(std::move(line), error_.empty()
                                                 ? "a value must be a string, a number or a "
                                                   "boolean"
                                                 : error_);
            std::string narrowKey;
            locale::AppendUtf8(narrowKey, key);
            // A repeated key takes the later value, as in most readers.
            JsonValue* slot = nullptr;
            for (auto& member : line.object)
                if (member.first == narrowKey)
                    slot = &member.second;
            if (slot != nullptr)
                *slot = std::move(value);
            else
                line.object.emplace_back(std::move(narrowKey), std::move(value));
            Blank();
            if (Take(','))
                continue;
            if (Take('}'))
                return Finish(std::move(line));
            return Fail(std::move(line), "',' or '}' must follow a value");
        }
    }

private:
    // The line is moved, never copied: its object holds every member.
    ParsedJsonLine Fail(ParsedJsonLine line, std::string why) {
        line.error = std::move(why) + " (at byte " + std::to_string(pos_ + 1) + ")";
        return line;
    }
    ParsedJsonLine Finish(ParsedJsonLine line) {
        Blank();
        if (pos_ != text_.size())
            return Fail(std::move(line), "nothing may follow the object");
        return line;
    }
    void Blank() {
        while (pos_ < text_.size() && (text_[pos_] == ' ' || text_[pos_] == '\t' ||
                                       text_[pos_] == '\r' || text_[pos_] == '\n'))
            ++pos_;
    }
    bool Take(char c) {
        if (pos_ < text_.size() && text_[pos_] == c) {
            ++pos_;
            return true;
        }
        return false;
    }
    bool Word(std::string_view word) {
        if (text_.substr(pos_, word.size()) != word)
            return false;
        pos_ += word.size();
        return true;
    }
    bool Hex4(unsigned& unit) {
        if (text_.size() - pos_ < 4)
            return false;
        auto [end, error] = std::from_chars(text_.data() + pos_, text_.data() + pos_ + 4, unit, 16);
        if (error != std::errc() || end != text_.data() + pos_ + 4)
            return false;
        pos_ += 4;
        return true;
    }
    bool String(std::u16string& out) {
        if (!Take('"'))
            return false;
        std::size_t run = pos_;
        auto flush = [&] { locale::AppendUtf16(out, text_.substr(run, pos_ - run)); };
        while (pos_ < text_.size()) {
            const char c = text_[pos_];
            if (c == '"') {
                flush();
                ++pos_;
                return true;
            }
            if (static_cast<unsigned char>(c) < 0x20) {
                error_ = "a control character must be escaped in a string";
                return false;
            }
            if (c != '\\') {
                ++pos_;
                continue;
            }
            flush();
            ++pos_;
            if (pos_ >= text_.size())
                break;
            const char e = text_[pos_++];
            switch (e) {
            case '"':
                out += u'"';
                break;
            case '\\':
                out += u'\\';
                break;
            case '/':
                out += u'/';
                break;
            case 'b':
                out += u'\b';
                break;
            case 'f':
                out += u'\f';
                break;
            case 'n':
                out += u'\n';
                break;
            case 'r':
                out += u'\r';
                break;
            case 't':
                out += u'\t';
                break;
            case 'u': {
                unsigned unit = 0;
                if (!Hex4(unit)) {
                    error_ = "\\u must be followed by four hexadecimal digits";
                    return false;
                }
                out += static_cast<char16_t>(unit);
                break;
            }
            default:
                error_ = std::string("unknown escape \\") + e;
                return false;
            }
            run = pos_;
        }
        error_ = "a string must end with '\"'";
        return false;
    }
    bool Value(JsonValue& value) {
        if (pos_ < text_.size() && text_[pos_] == '"') {
            std::u16string text;
            if (!String(text))
                return false;
            value = std::move(text);
            return true;
        }
        if (Word("true")) {
            value = true;
            return true;
        }
        if (Word("false")) {
            value = false;
            return true;
        }
        const std::size_t start = pos_;
        while (pos_ < text_.size() &&
               std::string_view("+-0123456789.eE").find(text_[pos_]) != std::string_view::npos)
            ++pos_;
        if (pos_ == start)
            return false;
        const std::string number(text_.substr(start, pos_ - start));
        char* end = nullptr;
        const double parsed = std::strtod(number.c_str(), &end);
        if (end != number.c_str() + number.size() || !std::isfinite(parsed)) {
            error_ = "'" + number + "' is no number";
            return false;
        }
        value = parsed;
        return true;
    }

    std::string_view text_;
    std::size_t pos_ = 0;
    std::string error_;
};

} // namespace

ParsedJsonLine ParseJsonLine(std::string_view line) {
    return Reader(line).Object();
}

namespace {

const JsonValue* Member(const JsonObject& object, std::string_view key) {
    for (const auto& member : object)
        if (member.first == key)
            return &member.second;
    return nullptr;
}

} // namespace

const std::u16string* JsonText(const JsonObject& object, const std::string& key) {
    const JsonValue* value = Member(object, key);
    return value == nullptr ? nullptr : std::get_if<std::u16string>(value);
}

std::optional<long> JsonNumber(const JsonObject& object, const std::string& key) {
    const JsonValue* value = Member(object, key);
    if (value == nullptr)
        return std::nullopt;
    if (const double* number = std::get_if<double>(value)) {
        if (*number != std::floor(*number) || std::fabs(*number) > 2147483647.0)
            return std::nullopt;
        return static_cast<long>(*number);
    }
    if (const bool* flag = std::get_if<bool>(value))
        return *flag ? 1 : 0;
    return std::nullopt;
}

} // namespace tervane::app
