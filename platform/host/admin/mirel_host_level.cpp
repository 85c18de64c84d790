// Level information: of the data source that the process is connected to.

#include <array>
#include <string_view>

#include "platform/admin.h"
#include "platform/host/sqlcli/mirel_host_session.h"
#include "platform/host/sqlcli/mirel_host_utf8.h"

namespace {

/// "name version", cut to the field; one of the two alone where the other is not known.
template <std::size_t size>
void describe(const host::Engine::Text& name, const host::Engine::Text& version, char (&field)[size]) {
  std::array<char, 2 * sizeof(host::Engine::Text)> both;
  std::size_t length = host::copyCut(name.data(), both.data(), name.size());
  if (length > 0 && version.front() != '\0') {
    both[length++] = ' ';
  }
  length += host::copyCut(version.data(), &both[length], version.size());
  host::copyCut({both.data(), length}, field, size);
}

}  // namespace

int sqleGetLevelInfo(unsigned int, sqleLevelInfo* level) {
  *level = {};
  if (const host::Engine* engine = host::connectedEngine()) {
    describe(engine->name, engine->version, level->codeRelease);
    host::copyCut(engine->version.data(), level->version, sizeof level->version);
    describe(engine->driver, engine->driverVersion, level->buildLevel);
  }
  return 0;
}
