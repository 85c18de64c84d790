#include "tarn/fleet/clickhouse/tarn_fleet_http.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstring>

#include "tarn/fleet/clickhouse/tarn_fleet_curl.h"
#include "tarn/fleet/clickhouse/tarn_fleet_owner.h"

namespace tarn {

namespace {

/// A server that is silent for longer is given up, in seconds.
constexpr long kSilence = 300;
/// Debian's server closes a connection after three idle seconds.
constexpr long kKept = 2;
constexpr std::size_t kLongestProblem = 300;
constexpr std::size_t kLongestStatement = 1'000'000'000;
constexpr std::size_t kLongestInsert = 10'000;  // without its rows

const HttpProblem kNoLibrary = {0, "libcurl.so.4 cannot be loaded (Debian's package libcurl4)"};

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

  const Curl* library = nullptr;
  CURL* curl = nullptr;
  std::string_view piece;
  std::string refusal;
  bool ended = false;

  long status() const {
    long status = 0;
    library->easyGetinfo(curl, CURLINFO_RESPONSE_CODE, &status);
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
  const Curl& library;
  CURL* curl = library.easyInit();
  curl_slist* headers = nullptr;
  char error[CURL_ERROR_SIZE] = "";

  explicit Handle(const Curl& loaded) : library(loaded) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() {
    library.slistFreeAll(headers);
    library.easyCleanup(curl);
  }

  std::string escaped(std::string_view text) const {
    char* const escaped = library.easyEscape(curl, text.data(), static_cast<int>(text.size()));
    std::string result = escaped == nullptr ? "" : escaped;
    library.free(escaped);
    return result;
  }

  void add(const char* name, const std::string& value) {
    if (!value.empty() && isHeaderText(value)) {
      headers = library.slistAppend(headers, fmt::format("{}: {}", name, value).c_str());
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

}  // namespace

FleetHttp::FleetHttp(const Server& server) : m_address(server.address) {
  const Curl* const library = loadedCurl();
  if (library == nullptr) {
    return;
  }
  m_handle = std::make_unique<Handle>(*library);
  m_handle->add("X-ClickHouse-User", server.user);
  m_handle->add("X-ClickHouse-Key", server.password);
  m_handle->headers = library->slistAppend(m_handle->headers, "Expect:");
  CURL* const curl = m_handle->curl;
  library->easySetopt(curl, CURLOPT_HTTPHEADER, m_handle->headers);
  library->easySetopt(curl, CURLOPT_ERRORBUFFER, m_handle->error);
  library->easySetopt(curl, CURLOPT_PROTOCOLS_STR, "http");
  library->easySetopt(curl, CURLOPT_PROXY, "");
  library->easySetopt(curl, CURLOPT_NOSIGNAL, 1L);
  library->easySetopt(curl, CURLOPT_CONNECTTIMEOUT, 10L);
  library->easySetopt(curl, CURLOPT_LOW_SPEED_LIMIT, 1L);
  library->easySetopt(curl, CURLOPT_LOW_SPEED_TIME, kSilence);
  library->easySetopt(curl, CURLOPT_MAXAGE_CONN, kKept);
  library->easySetopt(curl, CURLOPT_UPLOAD_BUFFERSIZE, 256 * 1024L);
}

FleetHttp::~FleetHttp() = default;

HttpOutcome FleetHttp::ask(std::string_view statement, const TakeBytes& take) {
  if (!m_handle) {
    return kNoLibrary;
  }
  Exchange question;
  question.url = target(kLongestStatement);
  question.statement = statement;
  question.take = &take;
  return exchange(&question);
}

HttpOutcome FleetHttp::insert(std::string_view statement, const GiveBytes& give) {
  if (!m_handle) {
    return kNoLibrary;
  }
  Exchange rows;
  rows.url = insertTarget(statement);
  rows.give = &give;
  return exchange(&rows);
}

std::string FleetHttp::target(std::size_t longestStatement) const {
  std::string url =
      fmt::format("http://{}/?wait_end_of_query=1&max_query_size={}", m_address, longestStatement);
  // Rows of several shards: each shard's own subqueries, and no insert that is still on its way when it ends.
  url += "&distributed_product_mode=local&insert_distributed_sync=1";
  if (!m_database.empty()) {
    url += "&database=" + m_handle->escaped(m_database);
  }
  return url;
}

/// The server lists a query once it has read as much as a statement may have, or all; Debian's reads by the
/// MiB.
std::string FleetHttp::insertTarget(std::string_view statement) {
  const std::string name = fmt::format("tarn.{}.{}.{}", m_database, thisProcess(), ++m_inserts);
  return fmt::format("{}&query={}&query_id={}", target(kLongestInsert), m_handle->escaped(statement),
                     m_handle->escaped(name));
}

HttpOutcome FleetHttp::exchange(Exchange* exchange) {
  const Curl& library = m_handle->library;
  CURL* const curl = exchange->curl = m_handle->curl;
  exchange->library = &library;
  library.easySetopt(curl, CURLOPT_URL, exchange->url.c_str());
  library.easySetopt(curl, CURLOPT_POST, 1L);
  library.easySetopt(curl, CURLOPT_POSTFIELDS,
                     exchange->give == nullptr ? exchange->statement.data() : nullptr);
  library.easySetopt(curl, CURLOPT_POSTFIELDSIZE_LARGE,
                     exchange->give == nullptr ? static_cast<curl_off_t>(exchange->statement.size()) : -1);
  library.easySetopt(curl, CURLOPT_READFUNCTION, &readPiece<Exchange>);
  library.easySetopt(curl, CURLOPT_READDATA, exchange);
  library.easySetopt(curl, CURLOPT_WRITEFUNCTION, &writePiece<Exchange>);
  library.easySetopt(curl, CURLOPT_WRITEDATA, exchange);
  m_handle->error[0] = '\0';

  const CURLcode outcome = library.easyPerform(curl);
  const long status = exchange->status();
  if (status != 0 && status != 200) {
    return problemOf(status, exchange->refusal);
  }
  if (outcome != CURLE_OK && !exchange->ended) {
    return HttpProblem{0, m_handle->error[0] != '\0' ? m_handle->error : library.easyStrerror(outcome)};
  }
  return std::nullopt;
}

}  // namespace tarn
