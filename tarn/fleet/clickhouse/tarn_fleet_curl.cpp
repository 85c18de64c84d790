#include "tarn/fleet/clickhouse/tarn_fleet_curl.h"

#include <dlfcn.h>

#include <optional>

namespace tarn {

namespace {

constexpr const char* kLibrary = "libcurl.so.4";

template <class Function>
bool find(void* library, const char* name, Function* function) {
  *function = reinterpret_cast<Function>(dlsym(library, name));
  return *function != nullptr;
}

std::optional<Curl> load() {
  void* const library = dlopen(kLibrary, RTLD_NOW | RTLD_LOCAL);
  Curl curl = {};
  const bool isWhole = library != nullptr && find(library, "curl_easy_init", &curl.easyInit) &&
                       find(library, "curl_easy_setopt", &curl.easySetopt) &&
                       find(library, "curl_easy_perform", &curl.easyPerform) &&
                       find(library, "curl_easy_getinfo", &curl.easyGetinfo) &&
                       find(library, "curl_easy_escape", &curl.easyEscape) &&
                       find(library, "curl_easy_strerror", &curl.easyStrerror) &&
                       find(library, "curl_easy_cleanup", &curl.easyCleanup) &&
                       find(library, "curl_slist_append", &curl.slistAppend) &&
                       find(library, "curl_slist_free_all", &curl.slistFreeAll) &&
                       find(library, "curl_free", &curl.free);
  return isWhole ? std::optional(curl) : std::nullopt;
}

}  // namespace

const Curl* loadedCurl() {
  static const std::optional<Curl> curl = load();
  return curl ? &*curl : nullptr;
}

}  // namespace tarn
