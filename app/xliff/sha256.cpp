#include "app/xliff/sha256.h"

#include <nettle/sha2.h>

namespace tervane::xliff {

std::string Sha256Hex(std::span<const std::uint8_t> bytes) {
    sha256_ctx context;
    sha256_init(&context);
    sha256_update(&context, bytes.size(), bytes.data());
    std::uint8_t digest[SHA256_DIGEST_SIZE];
    sha256_digest(&context, sizeof digest, digest);
    static constexpr char kHex[] = "0123456789abcdef";
    std::string hex;
    for (std::uint8_t byte : digest) {
        hex += kHex[byte >> 4];
        hex += kHex[byte & 15];
    }
    return hex;
}

} // namespace tervane::xliff
