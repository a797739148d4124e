// Test support: an Ed25519 key pair made fresh for a test run, and signed
// update-feed envelopes made with it, as a release publisher makes them.
#pragma once

#include <openssl/evp.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "updates/ed25519_verifier.hpp"

namespace lumenote::testing {

inline std::string base64Of(std::string_view bytes) {
    std::string text(4 * ((bytes.size() + 2) / 3) + 1, '\0');
    const int written = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()),
                                        reinterpret_cast<const unsigned char*>(bytes.data()),
                                        static_cast<int>(bytes.size()));
    text.resize(static_cast<std::size_t>(written));
    return text;
}

class Ed25519TestKey {
  public:
    Ed25519TestKey() : key_(EVP_PKEY_Q_keygen(nullptr, nullptr, "ED25519")) {
        std::size_t length = publicKey_.size();
        if (!key_ || EVP_PKEY_get_raw_public_key(key_.get(), publicKey_.data(), &length) != 1) {
            std::abort();
        }
    }

    const updates::Ed25519PublicKey& publicKey() const { return publicKey_; }

    // The 64-byte signature over exactly `message`.
    std::string sign(std::string_view message) const {
        const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(),
                                                                              EVP_MD_CTX_free);
        std::string signature(updates::kEd25519SignatureBytes, '\0');
        std::size_t length = signature.size();
        if (EVP_DigestSignInit(context.get(), nullptr, nullptr, nullptr, key_.get()) != 1 ||
            EVP_DigestSign(context.get(), reinterpret_cast<unsigned char*>(signature.data()),
                           &length, reinterpret_cast<const unsigned char*>(message.data()),
                           message.size()) != 1) {
            std::abort();
        }
        return signature;
    }

    // {"feed": base64(feed), "signature": base64(signature over feed)}.
    std::string envelope(std::string_view feed) const { return envelopeOf(feed, sign(feed)); }

    static std::string envelopeOf(std::string_view feed, std::string_view signature) {
        return nlohmann::json{{"feed", base64Of(feed)}, {"signature", base64Of(signature)}}.dump();
    }

  private:
    struct KeyFree {
        void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
    };
    std::unique_ptr<EVP_PKEY, KeyFree> key_;
    updates::Ed25519PublicKey publicKey_{};
};

// A feed document offering `version` and `build`.
inline std::string feedText(std::string_view version, long long build,
                            std::string_view notes = "Faster history.\nFixes a crash.") {
    return nlohmann::json{{"version", version},
                          {"build", build},
                          {"releaseNotes", notes},
                          {"downloadAddress", "https://downloads.example/lumenote"},
                          {"published", "2026-11-20"}}
        .dump();
}

}  // namespace lumenote::testing
