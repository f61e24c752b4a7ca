#pragma once
// The component server as a host meets it: the built module, registered into
// a registry store of the test's own and loaded by CoCreateInstance.
#include <cstdlib>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <string>

#include "platform/com/hresult.h"
#include "tests/support/fixtures.h"

namespace tervane::test {

class ServerTest : public ::testing::Test {
protected:
    void SetUp() override {
        ::setenv("TERVANE_REGISTRY_DIR", TempDir().c_str(), 1);
        module_ = ::dlopen(TERVANE_MODULE_PATH, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(module_, nullptr) << ::dlerror();
    }
    void TearDown() override {
        ::unsetenv("TERVANE_REGISTRY_DIR");
        // Kept loaded as CoCreateInstance keeps it; this only drops our count.
        ::dlclose(module_);
    }

    HRESULT Call(const char* exportName) const {
        auto entry = reinterpret_cast<HRESULT (*)()>(::dlsym(module_, exportName));
        return entry ? entry() : E_FAIL;
    }

    void* module_ = nullptr;
};

} // namespace tervane::test
