#include "app/fit_report.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <variant>

#include "platform/locale/utf8.h"

namespace tervane::app {

namespace {

// A JSON value as the report nests it: objects, arrays, texts, numbers.
struct Node {
    std::variant<std::monostate, bool, double, std::string, std::vector<Node>,
                 std::map<std::string, Node>>
        value;

    const Node* Member(const std::string& key) const {
        const auto* object = std::get_if<std::map<std::string, Node>>(&value);
        if (object == nullptr)
            return nullptr;
        const auto found = object->find(key);
        return found == object->end() ? nullptr : &found->second;
    }
    std::string Text() const {
        const auto* text = std::get_if<std::string>(&value);
        return text ? *text : std::string();
    }
    long Number() const {
        const auto* number = std::get_if<double>(&value);
        return number ? static_cast<long>(*number) : 0;
    }
    const std::vector<Node>* Items() const { return std::get_if<std::vector<Node>>(&value); }
    long Item(std::size_t i) const {
        const std::vector<Node>* items = Items();
        return items && i < items->size() ? (*items)[i].Number() : 0;
    }
};

class Parser {
public:
    explicit Parser(std::string_view text) : text_(text) {}

    bool Document(Node& node) {
        if (!Value(node, 0))
            return false;
        Blank();
        return pos_ == text_.size() || Fail("nothing may follow the object");
    }
    const std::string& Error() const { return error_; }

private:
    // The report nests three deep; a limit keeps a damaged text off the stack.
    static constexpr int kDepth = 16;

    bool Fail(const char* why) {
        if (error_.empty())
            error_ = std::string(why) + " (at byte " + std::to_string(pos_ + 1) + ")";
        return false;
    }
    void Blank() {
        while (pos_ < text_.size() && (text_[pos_] == ' ' || text_[pos_] == '\n' ||
                                       text_[pos_] == '\r' || text_[pos_] == '\t'))
            ++pos_;
    }
    bool Take(char c) {
        Blank();
        if (pos_ < text_.size() && text_[pos_] == c) {
            ++pos_;
            return true;
        }
        return false;
    }
    bool Value(Node& node, int depth) {
        if (depth > kDepth)
            return Fail("too deeply nested");
        Blank();
        if (pos_ >= text_.size())
            return Fail("a value is missing");
        const char c = text_[pos_];
        if (c == '{')
            return Object(node, depth);
        if (c == '[')
            return Array(node, depth);
        if (c == '"') {
            std::string text;
            if (!String(text))
                return false;
            node.value = std::move(text);
            return true;
        }
        for (auto [word, value] : {std::pair{"true", true}, std::pair{"false", false}})
            if (text_.substr(pos_).starts_with(word)) {
                pos_ += std::string_view(word).size();
                node.value = value;
                return true;
            }
        if (text_.substr(pos_).starts_with("null")) {
            pos_ += 4;
            return true;
        }
        double number = 0;
        const auto [end, error] =
            std::from_chars(text_.data() + pos_, text_.data() + text_.size(), number);
        if (error != std::errc())
            return Fail("a value must be an object, an array, a string or a number");
        pos_ = static_cast<std::size_t>(end - text_.data());
        node.value = number;
        return true;
    }
    bool Object(Node& node, int depth) {
        ++pos_;
        std::map<std::string, Node> members;
        if (!Take('}')) {
            do {
                Blank();
                std::string key;
                if (!String(key))
                    return Fail("a key must be a string");
                if (!Take(':'))
                    return Fail("':' must follow a key");
                if (!Value(members[key], depth + 1))
                    return false;
            } while (Take(','));
            if (!Take('}'))
                return Fail("',' or '}' must follow a value");
        }
        node.value = std::move(members);
        return true;
    }
    bool Array(Node& node, int depth) {
        ++pos_;
        std::vector<Node> items;
        if (!Take(']')) {
            do {
                if (!Value(items.emplace_back(), depth + 1))
                    return false;
            } while (Take(','));
            if (!Take(']'))
                return Fail("',' or ']' must follow a value");
        }
        node.value = std::move(items);
        return true;
    }
    bool String(std::string& out) {
        if (pos_ >= text_.size() || text_[pos_] != '"')
            return false;
        ++pos_;
        while (pos_ < text_.size() && text_[pos_] != '"') {
            const char c = text_[pos_++];
            if (c != '\\') {
                out += c;
                continue;
            }
            if (pos_ >= text_.size())
                break;
            const char e = text_[pos_++];
            switch (e) {
            case 'n':
                out += '\n';
                break;
            case 'r':
                out += '\r';
                break;
            case 't':
                out += '\t';
                break;
            case 'u': {
                unsigned unit = 0;
                const auto [end, error] = std::from_chars(
                    text_.data() + pos_, text_.data() + std::min(pos_ + 4, text_.size()), unit, 16);
                if (error != std::errc() || end != text_.data() + pos_ + 4)
                    return Fail("\\u must be followed by four hexadecimal digits");
                pos_ += 4;
                locale::AppendUtf8(out, std::u16string(1, static_cast<char16_t>(unit)));
                break;
            }
            default:
                out += e; // \" \\ \/
            }
        }
        if (pos_ >= text_.size())
            return Fail("a string must end with '\"'");
        ++pos_;
        return true;
    }

    std::string_view text_;
    std::size_t pos_ = 0;
    std::string error_;
};

} // namespace

std::optional<std::vector<Misfit>> ReadFitReport(std::string_view json, std::string& error) {
    Node report;
    Parser parser(json);
    if (!parser.Document(report)) {
        error = parser.Error();
        return std::nullopt;
    }
    const Node* findings = report.Member("findings");
    const std::vector<Node>* items = findings ? findings->Items() : nullptr;
    if (items == nullptr) {
        error = "the report lists no findings";
        return std::nullopt;
    }
    std::vector<Misfit> misfits;
    for (const Node& item : *items) {
        Misfit misfit;
        for (auto [field, key] :
             {std::pair{&misfit.kind, "kind"}, std::pair{&misfit.problem, "problem"},
              std::pair{&misfit.text, "text"}})
            if (const Node* node = item.Member(key))
                *field = node->Text();
        if (const Node* id = item.Member("id"))
            misfit.control = id->Number();
        if (const Node* needed = item.Member("needed")) {
            misfit.neededWidth = needed->Item(0);
            misfit.neededHeight = needed->Item(1);
        }
        if (const Node* room = item.Member("room")) {
            misfit.roomWidth = room->Item(0);
            misfit.roomHeight = room->Item(1);
        }
        misfits.push_back(std::move(misfit));
    }
    return misfits;
}

} // namespace tervane::app
