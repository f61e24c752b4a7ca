#include "platform/com/registrar.h"

#include <cctype>
#include <cstdlib>
#include <optional>

#include "platform/registry/registry.h"

namespace tervane {
namespace {

struct ScriptValue {
    DWORD type = REG_SZ;
    std::string text;
};

struct ScriptKey {
    enum class Removal { Normal, NoRemove, ForceRemove } removal = Removal::Normal;
    std::string name;
    std::optional<ScriptValue> defaultValue;
    std::vector<std::pair<std::string, ScriptValue>> values;
    std::vector<ScriptKey> keys;
};

class ScriptReader {
public:
    ScriptReader(std::string_view text, const Replacements& replacements)
        : text_(text), replacements_(replacements) {}

    // The root keys and what stands below them; false on a malformed script.
    bool ReadRoots(std::vector<std::pair<HKEY, ScriptKey>>& roots) {
        for (std::string word; Next(word);) {
            HKEY root = RootOf(word);
            ScriptKey key;
            if (root == nullptr || !ReadBody(key))
                return false;
            roots.emplace_back(root, std::move(key));
        }
        return ok_;
    }

private:
    static HKEY RootOf(const std::string& word) {
        if (word == "HKCR" || word == "HKEY_CLASSES_ROOT")
            return HKEY_CLASSES_ROOT;
        if (word == "HKCU" || word == "HKEY_CURRENT_USER")
            return HKEY_CURRENT_USER;
        return nullptr;
    }

    // { key... }
    bool ReadBody(ScriptKey& parent) {
        std::string word;
        if (!Next(word) || word != "{")
            return false;
        while (Next(word)) {
            if (word == "}")
                return true;
            if (word == "val") {
                std::string name;
                ScriptValue value;
                if (!Next(name) || !Next(word) || word != "=" || !ReadValue(value))
                    return false;
                parent.values.emplace_back(std::move(name), std::move(value));
                continue;
            }
            ScriptKey key;
            if (word == "NoRemove" || word == "ForceRemove") {
                key.removal = word == "NoRemove" ? ScriptKey::Removal::NoRemove
                                                 : ScriptKey::Removal::ForceRemove;
                if (!Next(word))
                    return false;
            }
            key.name = word;
            if (Peek() == '=') {
                Next(word);
                key.defaultValue.emplace();
                if (!ReadValue(*key.defaultValue))
                    return false;
            }
            if (Peek() == '{' && !ReadBody(key))
                return false;
            parent.keys.push_back(std::move(key));
        }
        return false;
    }

    bool ReadValue(ScriptValue& value) {
        std::string kind;
        if (!Next(kind) || (kind != "s" && kind != "d") || !Next(value.text))
            return false;
        value.type = kind == "s" ? REG_SZ : REG_DWORD;
        return true;
    }

    char Peek() {
        SkipSpace();
        return at_ < text_.size() ? text_[at_] : '\0';
    }
    void SkipSpace() {
        while (at_ < text_.size() && std::isspace(static_cast<unsigned char>(text_[at_])))
            ++at_;
    }

    // A brace, '=', a quoted text or a bare word, replacements made.
    bool Next(std::string& word) {
        word.clear();
        SkipSpace();
        if (at_ >= text_.size())
            return false;
        const char first = text_[at_];
        if (first == '{' || first == '}' || first == '=') {
            word = first;
            ++at_;
            return true;
        }
        std::string raw;
        if (first == '\'') {
            for (++at_;; ++at_) {
                if (at_ >= text_.size())
                    return ok_ = false;
                if (text_[at_] == '\'') {
                    if (at_ + 1 < text_.size() && text_[at_ + 1] == '\'') {
                        raw += '\'';
                        ++at_;
                        continue;
                    }
                    ++at_;
                    break;
                }
                raw += text_[at_];
            }
        } else {
            while (at_ < text_.size() && !std::isspace(static_cast<unsigned char>(text_[at_])) &&
                   text_[at_] != '{' && text_[at_] != '}' && text_[at_] != '=')
                raw += text_[at_++];
        }
        return Replace(raw, word);
    }

    bool Replace(const std::string& raw, std::string& out) {
        for (std::size_t i = 0; i < raw.size(); ++i) {
            if (raw[i] != '%') {
                out += raw[i];
                continue;
            }
            const std::size_t end = raw.find('%', i + 1);
            if (end == std::string::npos)
                return ok_ = false;
            const std::string name = raw.substr(i + 1, end - i - 1);
            if (name.empty()) {
                out += '%';
            } else {
                bool found = false;
                for (const auto& [variable, value] : replacements_)
                    if (variable == name) {
                        out += value;
                        found = true;
                    }
                if (!found)
                    return ok_ = false;
            }
            i = end;
        }
        return true;
    }

    std::string_view text_;
    const Replacements& replacements_;
    std::size_t at_ = 0;
    bool ok_ = true;
};

LONG SetValue(HKEY key, const char* name, const ScriptValue& value) {
    if (value.type == REG_DWORD) {
        const DWORD number = static_cast<DWORD>(std::strtoul(value.text.c_str(), nullptr, 0));
        return RegSetValueExA(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number),
                              sizeof number);
    }
    return RegSetValueExA(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.text.c_str()),
                          static_cast<DWORD>(value.text.size() + 1));
}

struct KeyHandle {
    HKEY key = nullptr;
    ~KeyHandle() {
        if (key)
            RegCloseKey(key);
    }
};

LONG Register(HKEY parent, const ScriptKey& script) {
    for (const ScriptKey& sub : script.keys) {
        if (sub.removal == ScriptKey::Removal::ForceRemove)
            RegDeleteTreeA(parent, sub.name.c_str());
        KeyHandle key;
        LONG result = RegCreateKeyExA(parent, sub.name.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                                      nullptr, &key.key, nullptr);
        if (result == ERROR_SUCCESS && sub.defaultValue)
            result = SetValue(key.key, nullptr, *sub.defaultValue);
        for (const auto& [name, value] : sub.values)
            if (result == ERROR_SUCCESS)
                result = SetValue(key.key, name.c_str(), value);
        if (result == ERROR_SUCCESS)
            result = Register(key.key, sub);
        if (result != ERROR_SUCCESS)
            return result;
    }
    return ERROR_SUCCESS;
}

// What is already gone counts as removed.
LONG Unregister(HKEY parent, const ScriptKey& script) {
    for (const ScriptKey& sub : script.keys) {
        if (sub.removal == ScriptKey::Removal::ForceRemove) {
            const LONG result = RegDeleteTreeA(parent, sub.name.c_str());
            if (result != ERROR_SUCCESS && result != ERROR_FILE_NOT_FOUND)
                return result;
            continue;
        }
        KeyHandle key;
        LONG result = RegOpenKeyExA(parent, sub.name.c_str(), 0, KEY_ALL_ACCESS, &key.key);
        if (result == ERROR_FILE_NOT_FOUND)
            continue;
        if (result == ERROR_SUCCESS)
            result = Unregister(key.key, sub);
        if (result != ERROR_SUCCESS)
            return result;
        if (sub.removal == ScriptKey::Removal::NoRemove) {
            for (const auto& [name, value] : sub.values)
                RegDeleteValueA(key.key, name.c_str());
            continue;
        }
        // Kept while something not of this script stands below it.
        result = RegDeleteKeyA(parent, sub.name.c_str());
        if (result != ERROR_SUCCESS && result != ERROR_ACCESS_DENIED)
            return result;
    }
    return ERROR_SUCCESS;
}

} // namespace

HRESULT RunRegistrationScript(std::string_view script, const Replacements& replacements,
                              bool registering) {
    std::vector<std::pair<HKEY, ScriptKey>> roots;
    ScriptReader reader(script, replacements);
    if (!reader.ReadRoots(roots))
        return DISP_E_EXCEPTION;
    for (const auto& [root, key] : roots) {
        const LONG result = registering ? Register(root, key) : Unregister(root, key);
        if (result != ERROR_SUCCESS)
            return HRESULT_FROM_WIN32(static_cast<DWORD>(result));
    }
    return S_OK;
}

} // namespace tervane
