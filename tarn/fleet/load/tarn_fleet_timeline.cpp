#include "tarn/fleet/load/tarn_fleet_timeline.h"

#include <algorithm>

#include "tarn/compare/tarn_compare_digest.h"

namespace tarn {

void HostTimeline::begin(const HostHistory& history) {
  m_rows.clear();
  m_places.clear();
  m_documents.clear();
  std::fill(m_slots.begin(), m_slots.end(), 0);
  m_taken = 0;
  for (const HostHistory::Taken& document : history.documents) {
    m_documents.push_back({document.moment, document.scopes});
  }
  for (const HostHistory::Row& row : history.rows) {
    const std::uint32_t place = placeOf(row.place, row.scope);
    const std::uint32_t added = addRow(place, row.since, {row.value, {}, row.since});
    m_rows[added].isVoid = row.isVoid;
    m_rows[added].before = m_places[place].newest;
    m_places[place].newest = added;
  }
}

std::uint32_t HostTimeline::placeOf(std::uint64_t hash, std::uint64_t scope) {
  if (2 * (m_places.size() + 1) > m_slots.size()) {
    grow();
  }
  const std::size_t mask = m_slots.size() - 1;
  std::size_t slot = digestOf(hash, 0) & mask;
  for (; m_slots[slot] != 0; slot = (slot + 1) & mask) {
    if (m_places[m_slots[slot] - 1].hash == hash) {
      return m_slots[slot] - 1;
    }
  }
  m_places.push_back({hash, scope});
  m_slots[slot] = static_cast<std::uint32_t>(m_places.size());
  return m_slots[slot] - 1;
}

void HostTimeline::grow() {
  m_slots.assign(std::max<std::size_t>(2048, 2 * m_slots.size()), 0);
  const std::size_t mask = m_slots.size() - 1;
  for (std::uint32_t place = 0; place < m_places.size(); ++place) {
    std::size_t slot = digestOf(m_places[place].hash, 0) & mask;
    while (m_slots[slot] != 0) {
      slot = (slot + 1) & mask;
    }
    m_slots[slot] = place + 1;
  }
}

std::uint32_t HostTimeline::addRow(std::uint32_t place, Moment since, const Said& said) {
  m_rows.push_back({since, said.value, said.text, said.told, place});
  return static_cast<std::uint32_t>(m_rows.size() - 1);
}

/// Puts the row before that one, or at the end when there is none.
void HostTimeline::insert(std::uint32_t row, std::uint32_t after) {
  std::uint32_t& link = after == kNone ? m_places[m_rows[row].place].newest : m_rows[after].before;
  m_rows[row].before = link;
  m_rows[row].isPut = true;
  link = row;
}

bool HostTimeline::take(const FlatDocument& document, Moment moment) {
  if (!addDocument(document, moment)) {
    return false;
  }
  ++m_taken;
  const auto known = static_cast<std::uint32_t>(m_places.size());
  for (const FlatFact& fact : document.facts) {
    const std::uint32_t place = placeOf(fact.place->hash, fact.place->scope);
    if (m_places[place].taken != m_taken) {  // two places may have one text
      m_places[place].taken = m_taken;
      m_places[place].known = fact.place;
      meet(place, moment, {fact.value, document.valueOf(fact)});
    }
  }
  for (std::uint32_t place = 0; place < known; ++place) {
    if (m_places[place].taken != m_taken) {
      meet(place, moment, {});
    }
  }
  return true;
}

/// Finds what comes behind it, too.
bool HostTimeline::addDocument(const FlatDocument& document, Moment moment) {
  const auto behind =
      std::lower_bound(m_documents.begin(), m_documents.end(), moment,
                       [](const Document& known, Moment wanted) { return known.moment < wanted; });
  if (behind != m_documents.end() && behind->moment == moment) {
    return false;
  }
  Document added = {moment, {}};
  for (const KnownPlace* const scope : document.scopes) {
    added.scopes.push_back(scope->scope);
  }
  m_next.assign(1, {0, behind == m_documents.end() ? 0 : behind->moment});
  for (const std::uint64_t scope : added.scopes) {
    const auto next = std::find_if(behind, m_documents.end(), [scope](const Document& later) {
      return std::find(later.scopes.begin(), later.scopes.end(), scope) != later.scopes.end();
    });
    m_next.emplace_back(scope, next == m_documents.end() ? 0 : next->moment);
  }
  std::sort(m_next.begin(), m_next.end());
  m_documents.insert(behind, std::move(added));
  return true;
}

std::optional<Moment> HostTimeline::nextWith(std::uint64_t scope) const {
  const auto found = std::lower_bound(m_next.begin(), m_next.end(), std::pair(scope, Moment{0}));
  return found == m_next.end() || found->first != scope ? std::nullopt : std::optional(found->second);
}

/// Rows of a document that a loader did not get to finish may stand where the database has no document: they
/// are true as well, and count as one.
void HostTimeline::meet(std::uint32_t place, Moment moment, const Said& said) {
  const std::optional<Moment> next = nextWith(m_places[place].scope);
  if (!next) {
    return;
  }
  std::uint32_t after = kNone;
  std::uint32_t row = m_places[place].newest;
  while (row != kNone && m_rows[row].since > moment) {
    after = std::exchange(row, m_rows[row].before);
  }
  const Said before = row == kNone ? Said() : Said{m_rows[row].value, m_rows[row].text, m_rows[row].told};
  if (before.value == said.value) {
    return;
  }
  insert(addRow(place, moment, said), after);
  const bool isFollowed = after != kNone && m_rows[after].since <= *next;
  if (*next != 0 && !isFollowed) {
    insert(addRow(place, *next, before), after);
  }
}

/// A row is void that repeats the one before it. Where a loader did not get to finish, the database may say
/// otherwise of rows that nobody has touched since.
void HostTimeline::correctVoid() {
  for (Row& row : m_rows) {
    const bool isVoid = row.value == (row.before == kNone ? 0 : m_rows[row.before].value);
    row.isPut = row.isPut || row.isVoid != isVoid;
    row.isVoid = isVoid;
  }
}

Moment HostTimeline::storedRow(const Place& place) const {
  std::uint32_t row = place.newest;
  while (m_rows[row].told != m_rows[row].since) {
    row = m_rows[row].before;
  }
  return m_rows[row].since;
}

std::vector<HostTimeline::Put> HostTimeline::puts() {
  correctVoid();
  std::vector<Put> puts;
  for (const Row& row : m_rows) {
    if (row.isPut) {
      const Place& place = m_places[row.place];
      Put put = {place.hash, place.known, row.since,  row.value != 0,
                 row.text,   row.told,    row.isVoid, &row == &m_rows[place.newest]};
      if (put.known == nullptr && put.told == 0) {
        put.told = storedRow(place);
      }
      puts.push_back(put);
    }
  }
  return puts;
}

}  // namespace tarn
