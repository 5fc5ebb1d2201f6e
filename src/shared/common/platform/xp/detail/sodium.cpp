#include "platform/xp/detail/sodium.h"

#include <dlfcn.h>

#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/HEX.h"

namespace isl::iostreams::detail {

namespace {

[[noreturn]] void cannot_use(const std::string& reason) {
    throw HEXError({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-5409@%s\n", reason});
}

template <class F>
void find(void* library, const char* name, F& function) {
    function = reinterpret_cast<F>(::dlsym(library, name));
    if (!function) {
        cannot_use(::dlerror());
    }
}

sodium_functions load() {
    void* const library = ::dlopen(CORVANE_SODIUM, RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        cannot_use(::dlerror());
    }
    sodium_functions found{};
    find(library, "sodium_init", found.init);
    find(library, "sodium_memzero", found.memzero);
    find(library, "sodium_memcmp", found.memcmp);
    find(library, "randombytes_buf", found.randombytes_buf);
    find(library, "crypto_generichash", found.generichash);
    find(library, "crypto_secretstream_xchacha20poly1305_init_push", found.init_push);
    find(library, "crypto_secretstream_xchacha20poly1305_push", found.push);
    find(library, "crypto_secretstream_xchacha20poly1305_init_pull", found.init_pull);
    find(library, "crypto_secretstream_xchacha20poly1305_pull", found.pull);
    if (found.init() < 0) {
        cannot_use("it does not start");
    }
    return found;
}

} // namespace

const sodium_functions& sodium() {
    static const sodium_functions functions = load();
    return functions;
}

} // namespace isl::iostreams::detail
