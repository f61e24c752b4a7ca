#pragma once
// A system library opened on first use rather than at start-up, for what
// only some commands need: loading libxml2 with the ICU it brings costs every
// run of the program about 1.5 ms, more than a small file's whole conversion.
#include <string>

namespace tervane::xliff {

class SharedLibrary {
public:
    // Opens soname for the rest of the process: it is never closed, since a
    // library's own exit handlers may still run. Throws std::runtime_error
    // when the library can't be opened.
    explicit SharedLibrary(const char* soname);

    // The named function or variable; throws std::runtime_error if missing.
    template <typename T> T Symbol(const char* name) const {
        return reinterpret_cast<T>(Find(name));
    }

private:
    void* Find(const char* name) const;

    std::string soname_;
    void* handle_;
};

} // namespace tervane::xliff
