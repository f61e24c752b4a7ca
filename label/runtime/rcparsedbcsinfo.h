#pragma once
// The process-wide lead-byte classifier of double-byte text, built once at
// start-up and then only read.
#include <cstdint>

namespace tervane {

class rcparsedbcsinfo {
public:
    explicit rcparsedbcsinfo(std::uint32_t mode) : mode_(mode) {}
    virtual bool isLeadByte(std::uint8_t byte) const;
    virtual ~rcparsedbcsinfo() = default;

    std::uint32_t mode() const { return mode_; }

    // Mode 0 (ask the platform) when GetVersionExA names a platform, else 1.
    static std::uint32_t startupMode();
    // The process's classifier.
    static const rcparsedbcsinfo& instance();

private:
    std::uint32_t mode_;
};

} // namespace tervane
