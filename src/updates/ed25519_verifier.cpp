#include "updates/ed25519_verifier.hpp"

#include <openssl/evp.h>

#include <memory>

namespace lumenote::updates {

namespace {

struct KeyFree {
    void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
};
struct ContextFree {
    void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};

}  // namespace

bool ed25519SignatureIsValid(const Ed25519PublicKey& key, std::string_view message,
                             std::string_view signature) {
    if (signature.size() != kEd25519SignatureBytes) {
        return false;
    }
    const std::unique_ptr<EVP_PKEY, KeyFree> publicKey(
        EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, key.data(), key.size()));
    const std::unique_ptr<EVP_MD_CTX, ContextFree> context(EVP_MD_CTX_new());
    if (!publicKey || !context) {
        return false;
    }
    // Ed25519 hashes internally: no digest is named.
    if (EVP_DigestVerifyInit(context.get(), nullptr, nullptr, nullptr, publicKey.get()) != 1) {
        return false;
    }
    return EVP_DigestVerify(context.get(), reinterpret_cast<const unsigned char*>(signature.data()),
                            signature.size(),
                            reinterpret_cast<const unsigned char*>(message.data()),
                            message.size()) == 1;
}

}  // namespace lumenote::updates
