#pragma once
/// libcurl, loaded when the first server is asked. It brings thirty libraries with it, whose loading would
/// double the start of every other command.

#include <curl/curl.h>

namespace tarn {

/// Its functions by their names without "curl_".
struct Curl {
  decltype(&::curl_easy_init) easyInit;
  decltype(&::curl_easy_setopt) easySetopt;
  decltype(&::curl_easy_perform) easyPerform;
  decltype(&::curl_easy_getinfo) easyGetinfo;
  decltype(&::curl_easy_escape) easyEscape;
  decltype(&::curl_easy_strerror) easyStrerror;
  decltype(&::curl_easy_cleanup) easyCleanup;
  decltype(&::curl_slist_append) slistAppend;
  decltype(&::curl_slist_free_all) slistFreeAll;
  decltype(&::curl_free) free;
};

/// Null when the library is not installed or lacks a function. Stays loaded.
const Curl* loadedCurl();

}  // namespace tarn
