#include "app/xliff/shared_library.h"

#include <dlfcn.h>

#include <stdexcept>

namespace tervane::xliff {

namespace {

std::string LastError() {
    const char* error = dlerror();
    return error ? error : "unknown error";
}

} // namespace

SharedLibrary::SharedLibrary(const char* soname)
    : soname_(soname), handle_(dlopen(soname, RTLD_NOW | RTLD_LOCAL)) {
    if (!handle_)
        throw std::runtime_error("cannot load " + soname_ + ": " + LastError());
}

void* SharedLibrary::Find(const char* name) const {
    dlerror();
    void* symbol = dlsym(handle_, name);
    if (!symbol)
        throw std::runtime_error("cannot find " + std::string(name) + " in " + soname_ + ": " +
                                 LastError());
    return symbol;
}

} // namespace tervane::xliff
