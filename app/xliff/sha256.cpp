#include "app/xliff/sha256.h"

#include <nettle/sha2.h>

#include "app/xliff/shared_library.h"

namespace tervane::xliff {

namespace {

// nettle is opened on first use, as libxml2 is: only the bilingual document
// asks for a digest.
struct Sha256Calls {
    decltype(&::nettle_sha256_init) init;
    decltype(&::nettle_sha256_update) update;
    decltype(&::nettle_sha256_digest) digest;
};

const Sha256Calls& Nettle() {
    static const Sha256Calls calls = [] {
        static const SharedLibrary library("libnettle.so.8");
        return Sha256Calls{
            library.Symbol<decltype(&::nettle_sha256_init)>("nettle_sha256_init"),
            library.Symbol<decltype(&::nettle_sha256_update)>("nettle_sha256_update"),
            library.Symbol<decltype(&::nettle_sha256_digest)>("nettle_sha256_digest")};
    }();
    return calls;
}

} // namespace

std::string Sha256Hex(std::span<const std::uint8_t> bytes) {
    const Sha256Calls& nettle = Nettle();
    sha256_ctx context;
    nettle.init(&context);
    nettle.update(&context, bytes.size(), bytes.data());
    std::uint8_t digest[SHA256_DIGEST_SIZE];
    nettle.digest(&context, sizeof digest, digest);
    static constexpr char kHex[] = "0123456789abcdef";
    std::string hex;
    for (std::uint8_t byte : digest) {
        hex += kHex[byte >> 4];
        hex += kHex[byte & 15];
    }
    return hex;
}

} // namespace tervane::xliff
