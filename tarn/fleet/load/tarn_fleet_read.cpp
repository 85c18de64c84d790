#include "tarn/fleet/load/tarn_fleet_read.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

#include "tarn/document/tarn_document_sha256.h"
#include "tarn/facts/tarn_facts_status.h"
#include "tarn/fleet/tarn_fleet_time.h"

namespace tarn {

namespace {

constexpr std::size_t kMostValues = 1 << 20;
constexpr std::size_t kLongestName = 255;  // of a host

DocumentHash hashOf(std::string_view bytes) {
  const std::string digest = sha256(bytes);
  DocumentHash hash;
  std::copy(digest.begin(), digest.end(), hash.begin());
  return hash;
}

/// What is too large is told from others by its beginning and the file's size.
DocumentHash hashOf(const StoreFile& file, const StoreBytes& content) {
  return content.isLarge ? hashOf(fmt::format("{}\n", file.size) + content.bytes) : hashOf(content.bytes);
}

/// What keeps documents of one second apart, in microseconds.
Moment drawnFrom(const DocumentHash& hash) {
  std::uint64_t number = 0;
  for (std::size_t at = 0; at < sizeof number; ++at) {
    number = number << 8 | hash.at(at);
  }
  return static_cast<Moment>(number % kMomentsPerSecond);
}

std::string clean(const std::optional<std::string>& text) {
  std::string result;
  appendClean(text.value_or(""), result);
  return result;
}

/// Each value is behind a comma or a bracket, so there are at most so many.
bool hasTooMany(std::string_view bytes) {
  return bytes.size() > kMostValues && std::count_if(bytes.begin(), bytes.end(), [](char byte) {
                                         return byte == ',' || byte == '[' || byte == '{';
                                       }) > static_cast<std::ptrdiff_t>(kMostValues);
}

class DocumentReader {
 public:
  DocumentReader(const StoreFile& file, const ReadContext& context)
      : m_context(context),
        m_stored(storedName(file.path)),
        m_path(Path::Repeated::numbered),
        m_status(context.facts, m_path) {
    m_about.file = file.path;
    m_about.seen = file.seen;
    m_logged = m_stored ? context.log.find(m_stored->request) : nullptr;
  }

  ReadDocument read(const StoreFile& file, StoreBytes content, FleetPlaces& places) {
    m_about.hash = hashOf(file, content);
    m_about.bytes =
        content.isLarge ? std::max<std::uint64_t>(file.size, kLargestDocument + 1) : content.bytes.size();
    content.isLarge = content.isLarge || hasTooMany(content.bytes);
    if (!content.isDamaged && !content.isLarge) {
      readWhole(content.bytes);
    }
    m_about.state = content.isDamaged ? "damaged" : content.isLarge ? "whole" : m_about.state;
    takeTime();
    takeHost();
    m_about.problem = problemOf(content);
    FlatDocument flat;
    if (m_about.problem.empty()) {
      flat = flattened(Tree(std::move(content.bytes)), places);
      for (const KnownPlace* const scope : flat.scopes) {
        m_about.scopes.push_back(scope->place.scope);
      }
    }
    return {std::move(m_about), std::move(flat)};
  }

 private:
  void readWhole(std::string_view bytes) {
    Reader reader(m_status, m_path);
    reader.feed(bytes);
    const Ending ending = reader.finish();
    m_status.finish();
    const bool isWhole = ending.state == State::whole;
    m_about.state = ending.state == State::cut ? "cut"
                    : !isWhole                 ? "damaged"
                                               : (m_status.isDocument() ? "whole" : "foreign");
    m_about.line = isWhole ? 0 : ending.place.line;
    m_about.column = isWhole ? 0 : ending.place.column;
    const Roles& roles = m_status.roles();
    m_about.engine = clean(roles[Role::engine]);
    m_about.version = clean(roles[Role::version]);
    m_about.database = clean(roles[Role::database]);
    m_about.answered = m_status.answered();
    m_about.asked = m_status.asked();
  }

  void takeTime() {
    const std::optional<std::string>& told = m_status.roles()[Role::time];
    const std::optional<ChosenTime> chosen = chosenTime(told ? timeOf(*told) : std::nullopt, m_stored);
    if (chosen || m_logged != nullptr) {
      const std::int64_t seconds = chosen ? chosen->seconds : m_logged->seconds;
      m_about.moment = seconds * kMomentsPerSecond + drawnFrom(m_about.hash);
      m_about.timeFrom = chosen ? chosen->from : "log";
    }
  }

  void takeHost() {
    const std::string told = clean(m_status.roles()[Role::host]);
    m_logged = m_logged != nullptr && m_logged->host.empty() ? nullptr : m_logged;
    if (!told.empty() && told.size() <= kLongestName) {
      m_about.host = told;
      m_about.hostFrom = "document";
    } else if (m_logged != nullptr) {
      m_about.host = m_logged->host;
      m_about.hostFrom = "log";
    }
  }

  const char* problemOf(const StoreBytes& content) const {
    if (content.isLarge) {
      return "large";
    }
    if (m_about.state != "whole") {
      return "not whole";
    }
    if (m_about.host.empty()) {
      return "no host";
    }
    if (m_about.moment == 0) {
      return "no time";
    }
    if (m_about.moment / kMomentsPerSecond > m_context.now + kSecondsPerDay) {
      return "future";
    }
    return m_logged != nullptr && !isSameHost(m_about.host, m_logged->host) ? "other host" : "";
  }

  const ReadContext& m_context;
  const std::optional<StoredName> m_stored;
  const ExchangeLog::Entry* m_logged = nullptr;
  Path m_path;
  StatusSink m_status;
  FleetDocument m_about;
};

}  // namespace

ReadDocument readDocument(const StoreFile& file, StoreBytes content, const ReadContext& context,
                          FleetPlaces& places) {
  return DocumentReader(file, context).read(file, std::move(content), places);
}

}  // namespace tarn
