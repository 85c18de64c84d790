#include "platform/host/sqlcli/mirel_host_session.h"

#include <cstdint>
#include <memory>
#include <new>

namespace host {

namespace {

constexpr std::uintptr_t kLoginTimeoutSeconds = 30;

constexpr Complaint kOutOfHandles{"HY014", "Too many handles are in use"};
constexpr Complaint kNoEnvironment{"HY000", "The ODBC driver manager refused an environment"};

constinit HandleTable table;
constinit std::array<AllocationFailure, 4> failures{};  // by handle type
constinit unsigned long connectionsOpened = 0;

constinit std::array<char, 256> noManagerText{};
constexpr Complaint kNoManager{"IM003", noManagerText.data()};

SQLRETURN refuse(short type, const Complaint& complaint) {
  failures[static_cast<std::size_t>(type)] = {&complaint, SQL_NULL_HANDLE};
  return SQL_ERROR;
}

/// Gives a record its handle. The record and the native handle in it are freed when there is none left.
template <class Record>
SQLRETURN publish(std::unique_ptr<Record> record, SQLHANDLE* output) {
  *output = table.add(record.get());
  if (*output == SQL_NULL_HANDLE) {
    odbc().freeHandle(Record::kType, record->native);
    return refuse(Record::kType, kOutOfHandles);
  }
  static_cast<void>(record.release());  // found by its handle from now on
  return SQL_SUCCESS;
}

/// Makes a connection or a statement below `parent`.
template <class Record, class Parent>
SQLRETURN allocateBelow(SQLHANDLE parentHandle, SQLHANDLE* output) {
  AllocationFailure& failure = failures[Record::kType];
  failure = {};
  *output = SQL_NULL_HANDLE;
  Parent* parent = table.find<Parent>(parentHandle);
  if (parent == nullptr) {
    return SQL_INVALID_HANDLE;
  }
  std::unique_ptr<Record> record(new (std::nothrow) Record{nullptr, parent});
  if (record == nullptr) {
    return refuse(Record::kType, kOutOfMemory);
  }
  const SQLRETURN code = odbc().allocHandle(Record::kType, parent->native, &record->native);
  if (!sqlSucceeded(code)) {
    failure.parent = parentHandle;
    return code;
  }
  return publish(std::move(record), output);
}

void destroy(Environment* environment) {
  odbc().freeHandle(SQL_HANDLE_ENV, environment->native);
  delete environment;
}

void freeStatements(const Connection& connection) {
  table.forEach<Statement>([&connection](const Statement& statement, SQLHANDLE handle) {
    if (statement.connection == &connection) {
      freeStatement(handle);
    }
  });
}

}  // namespace

HandleTable& handles() {
  return table;
}

SQLRETURN Statement::noted(SQLRETURN code) {
  unfinished = unfinished || isUnfinished(code);
  return code;
}

void Statement::leaveResult() {
  if (block != nullptr) {
    block->close();
    block.reset();
  }
  fetches = 0;
}

AllocationFailure allocationFailure(short type) {
  const auto index = static_cast<std::size_t>(type);
  return index < failures.size() ? failures[index] : AllocationFailure{};
}

SQLRETURN allocateEnvironment(SQLHANDLE* output) {
  failures[SQL_HANDLE_ENV] = {};
  *output = SQL_NULL_HANDLE;
  if (!openOdbc(noManagerText.data(), noManagerText.size())) {
    return refuse(SQL_HANDLE_ENV, kNoManager);
  }
  std::unique_ptr<Environment> environment(new (std::nothrow) Environment{allocateOdbcEnvironment()});
  if (environment == nullptr) {
    return refuse(SQL_HANDLE_ENV, kOutOfMemory);
  }
  if (environment->native == nullptr) {
    return refuse(SQL_HANDLE_ENV, kNoEnvironment);
  }
  return publish(std::move(environment), output);
}

SQLRETURN allocateConnection(SQLHANDLE environment, SQLHANDLE* output) {
  const SQLRETURN code = allocateBelow<Connection, Environment>(environment, output);
  if (sqlSucceeded(code)) {
    ++table.find<Environment>(environment)->connections;
  }
  return code;
}

SQLRETURN allocateStatement(SQLHANDLE connection, SQLHANDLE* output) {
  return allocateBelow<Statement, Connection>(connection, output);
}

SQLRETURN freeEnvironment(SQLHANDLE handle) {
  Environment* environment = table.find<Environment>(handle);
  if (environment == nullptr) {
    return SQL_INVALID_HANDLE;
  }
  table.remove(handle);
  environment->released = true;
  if (environment->connections == 0) {
    destroy(environment);
  }
  return SQL_SUCCESS;
}

SQLRETURN freeConnection(SQLHANDLE handle) {
  Connection* connection = table.find<Connection>(handle);
  if (connection == nullptr) {
    return SQL_INVALID_HANDLE;
  }
  freeStatements(*connection);
  if (connection->connected != 0) {
    odbc().disconnect(connection->native);
  }
  table.remove(handle);
  const SQLRETURN code = odbc().freeHandle(SQL_HANDLE_DBC, connection->native);
  Environment* environment = connection->environment;
  delete connection;
  --environment->connections;
  if (environment->released && environment->connections == 0) {
    destroy(environment);
  }
  return code;
}

SQLRETURN freeStatement(SQLHANDLE handle) {
  Statement* statement = table.find<Statement>(handle);
  if (statement == nullptr) {
    return SQL_INVALID_HANDLE;
  }
  table.remove(handle);
  if (statement->unfinished) {
    odbc().cancel(statement->native);
  }
  const SQLRETURN code = odbc().freeHandle(SQL_HANDLE_STMT, statement->native);
  delete statement;
  return code;
}

SQLRETURN openSession(Connection* connection, const char* dataSource, short dataSourceLength,
                      const char* user, short userLength, const char* password, short passwordLength) {
  keepOdbcConfiguration();
  if (connection->connected == 0) {
    // Without such a limit, a host that swallows packets holds the run. Not every driver knows it.
    odbc().setConnectAttr(connection->native, kOdbcLoginTimeout,
                          reinterpret_cast<void*>(kLoginTimeoutSeconds), SQL_IS_UINTEGER);
  }
  const SQLRETURN code = odbc().connect(connection->native, odbcText(dataSource), dataSourceLength,
                                        odbcText(user), userLength, odbcText(password), passwordLength);
  if (sqlSucceeded(code)) {
    connection->connected = ++connectionsOpened;
    connection->engine = meetEngine(connection->native);
  }
  return code;
}

SQLRETURN closeSession(Connection* connection) {
  freeStatements(*connection);
  const SQLRETURN code = odbc().disconnect(connection->native);
  if (sqlSucceeded(code)) {
    connection->connected = 0;
  }
  return code;
}

const Engine* connectedEngine() {
  const Connection* last = nullptr;
  table.forEach<Connection>([&last](const Connection& connection, SQLHANDLE) {
    if (connection.connected != 0 && (last == nullptr || connection.connected > last->connected)) {
      last = &connection;
    }
  });
  return last != nullptr ? &last->engine : nullptr;
}

}  // namespace host
