#include "platform/registry/registry.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <sstream>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "platform/win32/last_error.h"

struct RegistryKey {
    int root = 0; // 0 classes, 1 current user
    std::string path;
};

namespace {

RegistryKey g_classesRoot{0, ""};
RegistryKey g_currentUser{1, ""};

const char* const kRootFiles[] = {"classes_root.reg", "current_user.reg"};

struct Value {
    DWORD type = REG_NONE;
    std::vector<BYTE> data;
};
// Key paths and value names in lower case; a key's own entry has no name.
struct Store {
    std::set<std::string> keys;
    std::map<std::pair<std::string, std::string>, Value> values;
};

std::string Lower(std::string_view text) {
    std::string out(text);
    for (char& c : out)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c + 32);
    return out;
}

std::string Join(const std::string& base, const char* sub) {
    std::string path = base;
    if (sub != nullptr && *sub != '\0') {
        if (!path.empty())
            path += '\\';
        path += Lower(sub);
    }
    while (!path.empty() && path.back() == '\\')
        path.pop_back();
    return path;
}

// Handles opened and not yet closed.
std::mutex g_mutex;
std::map<HKEY, std::unique_ptr<RegistryKey>>& OpenKeys() {
    static std::map<HKEY, std::unique_ptr<RegistryKey>> keys;
    return keys;
}

bool Valid(HKEY key) {
    return key == HKEY_CLASSES_ROOT || key == HKEY_CURRENT_USER || OpenKeys().count(key) != 0;
}

std::string Hex(const std::vector<BYTE>& data) {
    static const char digits[] = "0123456789abcdef";
    std::string out;
    for (BYTE b : data) {
        out += digits[b >> 4];
        out += digits[b & 15];
    }
    return out;
}

std::vector<BYTE> Unhex(std::string_view text) {
    std::vector<BYTE> out;
    auto nibble = [](char c) { return c <= '9' ? c - '0' : c - 'a' + 10; };
    for (std::size_t i = 0; i + 1 < text.size(); i += 2)
        out.push_back(static_cast<BYTE>(nibble(text[i]) << 4 | nibble(text[i + 1])));
    return out;
}

// One line a key ("K<TAB>path") or a value ("V<TAB>path<TAB>name<TAB>type<TAB>hex"),
// the name hex-coded too, so that no name can break a line.
Store Load(const std::filesystem::path& file) {
    Store store;
    std::ifstream in(file);
    std::string line;
    while (std::getline(in, line)) {
        std::vector<std::string> fields;
        std::stringstream split(line);
        for (std::string field; std::getline(split, field, '\t');)
            fields.push_back(field);
        if (fields.size() == 2 && fields[0] == "K") {
            store.keys.insert(fields[1]);
        } else if (fields.size() >= 4 && fields[0] == "V") {
            const std::vector<BYTE> name = Unhex(fields[2]);
            Value value{static_cast<DWORD>(std::stoul(fields[3])),
                        Unhex(fields.size() > 4 ? fields[4] : "")};
            store.values[{fields[1], std::string(name.begin(), name.end())}] = std::move(value);
        }
    }
    return store;
}

bool Save(const std::filesystem::path& file, const Store& store) {
    const std::filesystem::path temporary = file.string() + ".tmp";
    {
        std::ofstream out(temporary, std::ios::trunc);
        for (const std::string& key : store.keys)
            out << "K\t" << key << '\n';
        for (const auto& [where, value] : store.values)
            out << "V\t" << where.first << '\t'
                << Hex(std::vector<BYTE>(where.second.begin(), where.second.end())) << '\t'
                << value.type << '\t' << Hex(value.data) << '\n';
        if (!out.flush())
            return false;
    }
    std::error_code error;
    std::filesystem::rename(temporary, file, error);
    return !error;
}

// The last store read or written, with the file's identity then: a program
// asks the store a score of times, and the file changes only by a rename,
// which gives it a new inode.
struct CachedStore {
    std::filesystem::path file;
    struct stat identity {};
    Store store;
};

std::unique_ptr<CachedStore>& Cache() {
    static std::unique_ptr<CachedStore> cache;
    return cache;
}

bool SameFile(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
           a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

void Remember(const std::filesystem::path& file, const Store& store) {
    struct stat identity {};
    if (::stat(file.c_str(), &identity) != 0) {
        Cache().reset();
        return;
    }
    Cache() = std::make_unique<CachedStore>(CachedStore{file, identity, store});
}

// Runs work on the store of a root under the store's lock; writes it back when
// work says so. Gives work's result, or ERROR_ACCESS_DENIED.
template <typename Work> LONG WithStore(int root, bool writes, Work work) {
    const std::filesystem::path folder = tervane::RegistryFolder();
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    const std::filesystem::path file = folder / kRootFiles[root];
    const int lock = ::open((file.string() + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (lock < 0)
        return ERROR_ACCESS_DENIED;
    ::flock(lock, writes ? LOCK_EX : LOCK_SH);
    struct stat identity {};
    const bool known = Cache() && Cache()->file == file && ::stat(file.c_str(), &identity) == 0 &&
                       SameFile(identity, Cache()->identity);
    Store store = known ? Cache()->store : Load(file);
    bool changed = false;
    LONG result = work(store, changed);
    if (result == ERROR_SUCCESS && changed && !Save(file, store))
        result = ERROR_ACCESS_DENIED;
    if (changed && result != ERROR_SUCCESS)
        Cache().reset(); // the file may hold either
    else if (!known || changed)
        Remember(file, store);
    ::close(lock);
    return result;
}

HKEY NewHandle(int root, std::string path) {
    auto key = std::make_unique<RegistryKey>(RegistryKey{root, std::move(path)});
    HKEY handle = key.get();
    OpenKeys().emplace(handle, std::move(key));
    return handle;
}

} // namespace

HKEY const HKEY_CLASSES_ROOT = &g_classesRoot;
HKEY const HKEY_CURRENT_USER = &g_currentUser;

namespace tervane {

std::string RegistryFolder() {
    if (const char* dir = std::getenv("TERVANE_REGISTRY_DIR"); dir && *dir)
        return dir;
    if (const char* config = std::getenv("XDG_CONFIG_HOME"); config && *config)
        return std::string(config) + "/tervane";
    const char* home = std::getenv("HOME");
    return std::string(home ? home : ".") + "/.config/tervane";
}

} // namespace tervane

LONG RegOpenKeyExA(HKEY key, const char* subKey, DWORD, REGSAM, HKEY* result) {
    std::lock_guard guard(g_mutex);
    if (!Valid(key) || result == nullptr)
        return ERROR_INVALID_HANDLE;
    const std::string path = Join(key->path, subKey);
    const LONG found = WithStore(key->root, false, [&](Store& store, bool&) -> LONG {
        return path.empty() || store.keys.count(path) ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
    });
    if (found == ERROR_SUCCESS)
        *result = NewHandle(key->root, path);
    return found;
}

LONG RegCreateKeyExA(HKEY key, const char* subKey, DWORD, const char*, DWORD, REGSAM, const void*,
                     HKEY* result, DWORD* disposition) {
    std::lock_guard guard(g_mutex);
    if (!Valid(key) || result == nullptr)
        return ERROR_INVALID_HANDLE;
    const std::string path = Join(key->path, subKey);
    bool existed = true;
    const LONG made = WithStore(key->root, true, [&](Store& store, bool& changed) -> LONG {
        // Every key on the way is made too.
        for (std::size_t end = 0; end != std::string::npos && !path.empty();) {
            end = path.find('\\', end + 1);
            const std::string part = path.substr(0, end);
            if (store.keys.insert(part).second) {
                changed = true;
                existed = part != path;
            }
        }
        return ERROR_SUCCESS;
    });
    if (made != ERROR_SUCCESS)
        return made;
    *result = NewHandle(key->root, path);
    if (disposition)
        *disposition = existed ? REG_OPENED_EXISTING_KEY : REG_CREATED_NEW_KEY;
    return ERROR_SUCCESS;
}

LONG RegQueryValueExA(HKEY key, const char* name, DWORD*, DWORD* type, BYTE* data, DWORD* size) {
    std::lock_guard guard(g_mutex);
    if (!Valid(key))
        return ERROR_INVALID_HANDLE;
    return WithStore(key->root, false, [&](Store& store, bool&) -> LONG {
        auto found = store.values.find({key->path, Lower(name ? name : "")});
        if (found == store.values.end())
            return ERROR_FILE_NOT_FOUND;
        const Value& value = found->second;
        if (type)
            *type = value.type;
        const auto needed = static_cast<DWORD>(value.data.size());
        if (data != nullptr && (size == nullptr || *size < needed)) {
            if (size)
                *size = needed;
            return ERROR_MORE_DATA;
        }
        if (data != nullptr)
            std::copy(value.data.begin(), value.data.end(), data);
        if (size)
            *size = needed;
        return ERROR_SUCCESS;
    });
}

LONG RegSetValueExA(HKEY key, const char* name, DWORD, DWORD type, const BYTE* data, DWORD size) {
    std::lock_guard guard(g_mutex);
    if (!Valid(key))
        return ERROR_INVALID_HANDLE;
    return WithStore(key->root, true, [&](Store& store, bool& changed) -> LONG {
        if (!key->path.empty() && !store.keys.count(key->path))
            return ERROR_FILE_NOT_FOUND; // deleted since it was opened
        Value& value = store.values[{key->path, Lower(name ? name : "")}];
        value.type = type;
        value.data.assign(data, data + (data ? size : 0));
        changed = true;
        return ERROR_SUCCESS;
    });
}

LONG RegCloseKey(HKEY key) {
    std::lock_guard guard(g_mutex);
    if (key == HKEY_CLASSES_ROOT || key == HKEY_CURRENT_USER)
        return ERROR_SUCCESS;
    return OpenKeys().erase(key) != 0 ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

namespace {

bool Below(const std::string& path, const std::string& parent) {
    return path.size() > parent.size() + 1 && path.compare(0, parent.size(), parent) == 0 &&
           path[parent.size()] == '\\';
}

// Subkey names of path, in the store's order.
std::vector<std::string> Children(const Store& store, const std::string& path) {
    std::vector<std::string> names;
    for (const std::string& key : store.keys) {
        if (path.empty() ? key.find('\\') == std::string::npos
                         : Below(key, path) && key.find('\\', path.size() + 1) == std::string::npos)
            names.push_back(path.empty() ? key : key.substr(path.size() + 1));
    }
    return names;
}

LONG DeleteKey(HKEY key, const char* subKey, bool tree) {
    std::lock_guard guard(g_mutex);
    if (!Valid(key))
        return ERROR_INVALID_HANDLE;
    const std::string path = Join(key->path, subKey);
    if (path.empty())
        return ERROR_ACCESS_DENIED; // a root stays
    return WithStore(key->root, true, [&](Store& store, bool& changed) -> LONG {
        if (!store.keys.count(path))
            return ERROR_FILE_NOT_FOUND;
        if (!tree && !Children(store, path).empty())
            return ERROR_ACCESS_DENIED;
        std::erase_if(store.keys,
                      [&](const std::string& k) { return k == path || Below(k, path); });
        std::erase_if(store.values, [&](const auto& entry) {
            return entry.first.first == path || Below(entry.first.first, path);
        });
        changed = true;
        return ERROR_SUCCESS;
    });
}

LONG CopyName(const std::string& name, char* out, DWORD* size) {
    if (out == nullptr || size == nullptr)
        return ERROR_INVALID_PARAMETER;
    if (*size < name.size() + 1) {
        *size = static_cast<DWORD>(name.size() + 1);
        return ERROR_MORE_DATA;
    }
    std::copy(name.begin(), name.end(), out);
    out[name.size()] = '\0';
    *size = static_cast<DWORD>(name.size());
    return ERROR_SUCCESS;
}

} // namespace

LONG RegDeleteKeyA(HKEY key, const char* subKey) {
    return DeleteKey(key, subKey, false);
}

LONG RegDeleteTreeA(HKEY key, const char* subKey) {
    return DeleteKey(key, subKey, true);
}

LONG RegDeleteValueA(HKEY key, const char* name) {
    std::lock_guard guard(g_mutex);
    if (!Valid(key))
        return ERROR_INVALID_HANDLE;
    return WithStore(key->root, true, [&](Store& store, bool& changed) -> LONG {
        if (store.values.erase({key->path, Lower(name ? name : "")}) == 0)
            return ERROR_FILE_NOT_FOUND;
        changed = true;
        return ERROR_SUCCESS;
    });
}

LONG RegEnumKeyExA(HKEY key, DWORD index, char* name, DWORD* size, DWORD*, char*, DWORD*, void*) {
    std::lock_guard guard(g_mutex);
    if (!Valid(key))
        return ERROR_INVALID_HANDLE;
    return WithStore(key->root, false, [&](Store& store, bool&) -> LONG {
        const std::vector<std::string> names = Children(store, key->path);
        if (index >= names.size())
            return ERROR_NO_MORE_ITEMS;
        return CopyName(names[index], name, size);
    });
}

LONG RegEnumValueA(HKEY key, DWORD index, char* name, DWORD* size, DWORD*, DWORD* type, BYTE* data,
                   DWORD* dataSize) {
    std::lock_guard guard(g_mutex);
    if (!Valid(key))
        return ERROR_INVALID_HANDLE;
    return WithStore(key->root, false, [&](Store& store, bool&) -> LONG {
        DWORD seen = 0;
        for (const auto& [where, value] : store.values) {
            if (where.first != key->path || seen++ != index)
                continue;
            if (type)
                *type = value.type;
            if (dataSize) {
                const auto needed = static_cast<DWORD>(value.data.size());
                if (data != nullptr && *dataSize < needed) {
                    *dataSize = needed;
                    return ERROR_MORE_DATA;
                }
                if (data != nullptr)
                    std::copy(value.data.begin(), value.data.end(), data);
                *dataSize = needed;
            }
            return CopyName(where.second, name, size);
        }
        return ERROR_NO_MORE_ITEMS;
    });
}
