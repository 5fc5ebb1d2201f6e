#pragma once

#include <sodium.h>

/// The library that encrypts, opened when it is first needed: a session without encrypted scripts does not
/// pay for it.
namespace isl::iostreams::detail {

struct sodium_functions {
    decltype(&::sodium_init) init;
    decltype(&::sodium_memzero) memzero;
    decltype(&::sodium_memcmp) memcmp;
    decltype(&::randombytes_buf) randombytes_buf;
    decltype(&::crypto_generichash) generichash;
    decltype(&::crypto_secretstream_xchacha20poly1305_init_push) init_push;
    decltype(&::crypto_secretstream_xchacha20poly1305_push) push;
    decltype(&::crypto_secretstream_xchacha20poly1305_init_pull) init_pull;
    decltype(&::crypto_secretstream_xchacha20poly1305_pull) pull;
};

/// The functions of the library. Throws HEXError when it cannot be used. Any thread.
const sodium_functions& sodium();

/// Bytes that are wiped when they go. Never copied.
template <class T>
struct wiped {
    T value{};

    wiped() { sodium(); } // so that the library is there when the bytes go
    ~wiped() { sodium().memzero(&value, sizeof value); }
    wiped(const wiped&) = delete;
    wiped& operator=(const wiped&) = delete;
};

} // namespace isl::iostreams::detail
