#include "platform/host/sqlcli/mirel_host_engine.h"

#include <algorithm>
#include <cstdlib>

#include "platform/sqlcli.h"

namespace host {

namespace {

constexpr int kOdbc3 = 3;

void describe(OdbcHandle connection, unsigned short item, Engine::Text* text) {
  short length = 0;
  odbc().getInfo(connection, item, text->data(), static_cast<short>(text->size()), &length);
  text->back() = '\0';
}

template <class Number>
Number number(OdbcHandle connection, unsigned short item) {
  Number value = 0;
  short length = 0;
  odbc().getInfo(connection, item, &value, sizeof value, &length);
  return value;
}

bool givesBlocks(OdbcHandle connection, const Dialect& dialect) {
  Engine::Text odbcVersion{};
  describe(connection, kOdbcDriverOdbcVersion, &odbcVersion);
  return !dialect.rowByRow && std::atoi(odbcVersion.data()) >= kOdbc3 &&
         (number<unsigned int>(connection, kOdbcGetDataExtensions) & kOdbcGetDataInBlocks) != 0;
}

/// The first word of a statement's first value; empty when there is none.
Engine::Text answer(OdbcHandle statement) {
  Engine::Text text{};
  long length = 0;
  if (sqlSucceeded(odbc().fetch(statement)) &&
      sqlSucceeded(odbc().getData(statement, 1, SQL_C_CHAR, text.data(), text.size(), &length))) {
    text.back() = '\0';
    std::fill(std::find(text.begin(), text.end(), ' '), text.end(), '\0');
    return text;
  }
  return {};
}

/// Runs a statement of our own.
Engine::Text ask(OdbcHandle connection, const char* text) {
  OdbcHandle statement = nullptr;
  if (text == nullptr || !sqlSucceeded(odbc().allocHandle(SQL_HANDLE_STMT, connection, &statement))) {
    return {};
  }
  Engine::Text found{};
  const SQLRETURN code = odbc().execDirect(statement, odbcText(text), SQL_NTS);
  if (sqlSucceeded(code)) {
    found = answer(statement);
  } else if (isUnfinished(code)) {
    odbc().cancel(statement);
  }
  odbc().freeHandle(SQL_HANDLE_STMT, statement);
  return found;
}

}  // namespace

Engine meetEngine(OdbcHandle connection) {
  Engine engine;
  describe(connection, kOdbcEngineName, &engine.name);
  describe(connection, kOdbcEngineVersion, &engine.version);
  describe(connection, kOdbcDriverName, &engine.driver);
  describe(connection, kOdbcDriverVersion, &engine.driverVersion);
  engine.dialect = &dialectOf(engine.name.data(), engine.version.data());
  engine.reportsUpperCase = number<unsigned short>(connection, kOdbcIdentifierCase) == kOdbcUpperCase;
  engine.givesBlocks = givesBlocks(connection, *engine.dialect);
  ask(connection, engine.dialect->sessionStart);
  if (const Engine::Text version = ask(connection, engine.dialect->version); version.front() != '\0') {
    engine.version = version;
  }
  return engine;
}

}  // namespace host
