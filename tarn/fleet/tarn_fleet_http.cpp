#include "tarn/fleet/tarn_fleet_http.h"

#include <curl/curl.h>
#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstring>

namespace tarn {

namespace {

/// A server that is silent for longer is given up, in seconds.
constexpr long kSilence = 300;
/// Debian's server closes a connection after three idle seconds.
constexpr long kKept = 2;
constexpr std::size_t kLongestProblem = 300;

/// Behind these words, and before those, stands what a person wants to know.
constexpr std::string_view kBefore = "Exception: ";
constexpr std::string_view kBehind[] = {", e.what()", " (version ", ". Stack trace"};

int codeOf(std::string_view answer) {
  constexpr std::string_view kCode = "Code: ";
  int code = 0;
  if (answer.starts_with(kCode)) {
    std::from_chars(answer.data() + kCode.size(), answer.data() + answer.size(), code);
  }
  return code;
}

std::string sentenceOf(std::string_view answer) {
  if (const std::size_t at = answer.rfind(kBefore); at != std::string_view::npos) {
    answer.remove_prefix(at + kBefore.size());
  }
  for (const std::string_view end : kBehind) {
    answer = answer.substr(0, answer.find(end));
  }
  answer = answer.substr(0, std::min(answer.find('\n'), kLongestProblem));
  return std::string(answer);
}

HttpProblem problemOf(long status, std::string_view answer) {
  const std::string sentence = sentenceOf(answer);
  return {codeOf(answer),
          sentence.empty() ? fmt::format("the server answers with status {}", status) : sentence};
}

bool isHeaderText(const std::string& text) {
  return std::ranges::none_of(text, [](unsigned char byte) { return byte < ' ' || byte == 0x7f; });
}

}  // namespace

/// What one request gives and takes.
struct FleetHttp::Exchange {
  std::string url;
  std::string_view statement;  ///< of the body, when there is no `give`
  const TakeBytes* take = nullptr;
  const GiveBytes* give = nullptr;

  CURL* curl = nullptr;
  std::string_view piece;
  std::string refusal;
  bool ended = false;

  long status() const {
    long status = 0;
    curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status);
    return status;
  }

  std::size_t read(char* room, std::size_t size) {
    if (piece.empty()) {
      piece = (*give)();
    }
    const std::size_t count = std::min(size, piece.size());
    std::memcpy(room, piece.data(), count);
    piece.remove_prefix(count);
    return count;
  }

  std::size_t write(std::string_view bytes) {
    if (status() != 200) {
      refusal.append(bytes.substr(0, 10'000 - std::min<std::size_t>(refusal.size(), 10'000)));
    } else if (take != nullptr && *take) {
      ended = !(*take)(bytes);
    }
    return ended ? 0 : bytes.size();
  }
};

struct FleetHttp::Handle {
  CURL* curl = curl_easy_init();
  curl_slist* headers = nullptr;
  char error[CURL_ERROR_SIZE] = "";

  ~Handle() {
    curl_slist_free_all(headers);
    curl_easy_cleanup(curl);
  }

  void add(const char* name, const std::string& value) {
    if (!value.empty() && isHeaderText(value)) {
      headers = curl_slist_append(headers, fmt::format("{}: {}", name, value).c_str());
    }
  }
};

namespace {

template <class Exchange>
std::size_t readPiece(char* room, std::size_t size, std::size_t count, void* exchange) {
  return static_cast<Exchange*>(exchange)->read(room, size * count);
}

template <class Exchange>
std::size_t writePiece(char* bytes, std::size_t size, std::size_t count, void* exchange) {
  return static_cast<Exchange*>(exchange)->write({bytes, size * count});
}

std::string escaped(CURL* curl, std::string_view text) {
  char* const escaped = curl_easy_escape(curl, text.data(), static_cast<int>(text.size()));
  std::string result = escaped == nullptr ? "" : escaped;
  curl_free(escaped);
  return result;
}

}  // namespace

FleetHttp::FleetHttp(const Server& server) : m_address(server.address), m_handle(std::make_unique<Handle>()) {
  m_handle->add("X-ClickHouse-User", server.user);
  m_handle->add("X-ClickHouse-Key", server.password);
  m_handle->headers = curl_slist_append(m_handle->headers, "Expect:");
  CURL* const curl = m_handle->curl;
  curl_easy_setopt(curl, CURLOPT_HTTPHEADER, m_handle->headers);
  curl_easy_setopt(curl, CURLOPT_ERRORBUFFER, m_handle->error);
  curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "http");
  curl_easy_setopt(curl, CURLOPT_PROXY, "");
  curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT, 10L);
  curl_easy_setopt(curl, CURLOPT_LOW_SPEED_LIMIT, 1L);
  curl_easy_setopt(curl, CURLOPT_LOW_SPEED_TIME, kSilence);
  curl_easy_setopt(curl, CURLOPT_MAXAGE_CONN, kKept);
  curl_easy_setopt(curl, CURLOPT_UPLOAD_BUFFERSIZE, 256 * 1024L);
}

FleetHttp::~FleetHttp() = default;

HttpOutcome FleetHttp::ask(std::string_view statement, const TakeBytes& take) {
  Exchange question;
  question.url = target("");
  question.statement = statement;
  question.take = &take;
  return exchange(&question);
}

HttpOutcome FleetHttp::insert(std::string_view statement, const GiveBytes& give) {
  Exchange rows;
  rows.url = target(statement);
  rows.give = &give;
  return exchange(&rows);
}

std::string FleetHttp::target(std::string_view statement) const {
  CURL* const curl = m_handle->curl;
  std::string url = fmt::format("http://{}/?wait_end_of_query=1&max_query_size=1000000000", m_address);
  // Rows of several shards: each shard's own subqueries, and no insert that is still on its way when it ends.
  url += "&distributed_product_mode=local&insert_distributed_sync=1";
  if (!m_database.empty()) {
    url += "&database=" + escaped(curl, m_database);
  }
  if (!statement.empty()) {
    url += "&query=" + escaped(curl, statement);
  }
  return url;
}

HttpOutcome FleetHttp::exchange(Exchange* exchange) {
  CURL* const curl = exchange->curl = m_handle->curl;
  curl_easy_setopt(curl, CURLOPT_URL, exchange->url.c_str());
  curl_easy_setopt(curl, CURLOPT_POST, 1L);
  curl_easy_setopt(curl, CURLOPT_POSTFIELDS,
                   exchange->give == nullptr ? exchange->statement.data() : nullptr);
  curl_easy_setopt(curl, CURLOPT_POSTFIELDSIZE_LARGE,
                   exchange->give == nullptr ? static_cast<curl_off_t>(exchange->statement.size()) : -1);
  curl_easy_setopt(curl, CURLOPT_READFUNCTION, &readPiece<Exchange>);
  curl_easy_setopt(curl, CURLOPT_READDATA, exchange);
  curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, &writePiece<Exchange>);
  curl_easy_setopt(curl, CURLOPT_WRITEDATA, exchange);
  m_handle->error[0] = '\0';

  const CURLcode outcome = curl_easy_perform(curl);
  const long status = exchange->status();
  if (status != 0 && status != 200) {
    return problemOf(status, exchange->refusal);
  }
  if (outcome != CURLE_OK && !exchange->ended) {
    return HttpProblem{0, m_handle->error[0] != '\0' ? m_handle->error : curl_easy_strerror(outcome)};
  }
  return std::nullopt;
}

}  // namespace tarn
