#pragma once
// The live handles of one kind: a stale or foreign value is looked up, never
// dereferenced, so using it fails cleanly.
#include <map>
#include <memory>
#include <mutex>

#include "platform/win32/handle.h"

namespace tervane {

template <typename T> class HandleTable {
public:
    static HandleTable& Instance() {
        static HandleTable table;
        return table;
    }
    HANDLE Add(std::unique_ptr<T> object) {
        std::lock_guard lock(mutex_);
        HANDLE handle = object.get();
        live_.emplace(handle, std::move(object));
        return handle;
    }
    T* Find(HANDLE handle) {
        std::lock_guard lock(mutex_);
        auto it = live_.find(handle);
        return it == live_.end() ? nullptr : it->second.get();
    }
    // Ends the handle and hands its object back; null for a handle not live.
    std::unique_ptr<T> Take(HANDLE handle) {
        std::lock_guard lock(mutex_);
        auto it = live_.find(handle);
        if (it == live_.end())
            return nullptr;
        auto object = std::move(it->second);
        live_.erase(it);
        return object;
    }

private:
    std::mutex mutex_;
    std::map<HANDLE, std::unique_ptr<T>> live_;
};

} // namespace tervane
