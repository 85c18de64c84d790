#include "db/mirel_db_connection.h"
#include "db/mirel_db_resultset.h"
#include "tests/unit/fake_platform.h"
#include "tests/unit/values.h"

class Database : public PlatformTest {
 protected:
  /// An open connection on handles 1 and 2; the next statement is 3.
  void connect() {
    EXPECT_EQ(SQL_SUCCESS, connection.connect("SAMPLE"));
    platform.forgetCalls();
  }
  std::string query(const char* sql) {
    const std::unique_ptr<Value> rows(connection.query(sql));
    const std::string written = rows->stringify(0).c_str();
    const std::string shown = compact(rows.get());
    EXPECT_EQ(written, rows->stringify(0).c_str()) << "looking at the rows changed them";
    return shown;
  }

  DBConnection connection;
};

TEST_F(Database, ConnectsInStepsAndUndoesThemInAFixedOrder) {
  const std::string report = "SQLGetDiagRec(connection, 2, 1, 256)\nSQLGetDiagRec(connection, 2, 2, 256)\n";
  const std::string freed = "SQLFreeHandle(environment, 1)\nSQLFreeHandle(connection, 2)\n";
  const std::string all[] = {"SQLAllocHandle(environment, 0)\n", "SQLAllocHandle(connection, 1)\n",
                             "SQLSetConnectAttr(2, 2466, 3, -5)\n",
                             "SQLConnect(2, \"SAMPLE\", -3, \"\", -3, \"\", -3)\n"};
  const struct {
    SQLRETURN code;
    std::string after, error;
  } rows[] = {
      {-1, "SQLGetDiagRec(environment, 0, 1, 256)\nSQLGetDiagRec(environment, 0, 2, 256)\n",
       "Alloc m_env\nSQLAllocHandle failed\n"},
      {99,
       "SQLGetDiagRec(connection, 0, 1, 256)\nSQLGetDiagRec(connection, 0, 2, 256)\n"
       "SQLFreeHandle(environment, 1)\n",
       "Alloc m_dbc\nSQLAllocHandle failed\n"},
      {-2, report + freed, "Set SQL_ATTR_QUERY_PATROLLER_BYPASS\nSQLSetConnectAttr failed\n"},
      {100, report + freed, "Connect\nSQLConnect failed\n"},
  };
  std::string calls;
  for (std::size_t step = 0; step < std::size(rows); ++step) {
    FakePlatform fresh;
    DBConnection one;
    calls += all[step];
    fresh.fail("SQL", static_cast<long>(step + 1), rows[step].code);
    EXPECT_EQ(rows[step].code, one.connect("SAMPLE"));
    EXPECT_FALSE(one.connected() || one.disconnect());
    EXPECT_EQ(calls + rows[step].after, fresh.calls(FakePlatform::sql));
    EXPECT_EQ("Trying to run: " + rows[step].error, standardError());
    EXPECT_EQ("", fresh.open()) << step;
    EXPECT_EQ(0U, one.NumTables());
    EXPECT_EQ("Trying to run: alloc stmt\nSQLAllocHandle failed\n", standardError());
    EXPECT_EQ(1, fresh.count("SQLAllocHandle(statement, 0)"));
  }
  platform.fail("SQL", 0, SQL_SUCCESS_WITH_INFO);
  EXPECT_EQ(SQL_SUCCESS_WITH_INFO, connection.connect("SAMPLE"));
  EXPECT_TRUE(connection.disconnect());
  EXPECT_FALSE(connection.connected() || connection.disconnect());
  EXPECT_EQ(calls + "SQLDisconnect(2)\nSQLFreeHandle(connection, 2)\nSQLFreeHandle(environment, 1)\n",
            platform.calls(FakePlatform::sql));
}

TEST_F(Database, ReportsEveryMessageUpToATruncatedOne) {
  const std::string x255(255, 'x');
  const std::pair<std::vector<std::string>, std::string> rows[] = {
      {{"first", "second"}, "first\nsecond\n"},
      {{x255, "second"}, x255 + "\nsecond\n"},
      {{x255 + "yz", "second"}, x255 + "\n"},
      {{std::string("NUL\0inside", 10), ""}, "NUL\n\n"},
  };
  connect();
  for (const auto& [messages, report] : rows) {
    platform.refuse("s", messages);
    EXPECT_EQ("[]", query("s"));
    EXPECT_EQ("Trying to run: Exec Direct\n" + report, standardError());
  }
  platform.refuse("s", {"first", "second"});
  platform.fail("SQLGetDiagRec", 2);
  EXPECT_EQ("[]", query("s"));
  EXPECT_EQ("Trying to run: Exec Direct\nfirst\n", standardError());
}

TEST_F(Database, RunsAStatementAndLeavesItAllocated) {
  EXPECT_FALSE(connection.exec("s"));
  connect();
  platform.answer("s", {{}});
  EXPECT_TRUE(connection.exec("s"));
  EXPECT_NE(std::string::npos, platform.open().find("statement 1"));
  EXPECT_EQ(SQL_SUCCESS, connection.freeStmt());
  platform.fail("SQLAllocHandle");
  EXPECT_FALSE(connection.exec("s"));
  EXPECT_FALSE(connection.exec("unknown"));
  EXPECT_EQ(
      "SQLAllocHandle(statement, 2)\nSQLExecDirect(3, \"s\", -3)\nSQLFreeHandle(statement, 3)\n"
      "SQLAllocHandle(statement, 2)\nSQLGetDiagRec(statement, 0, 1, 256)\nSQLGetDiagRec(statement, 0, 2, "
      "256)\n"
      "SQLAllocHandle(statement, 2)\nSQLExecDirect(4, \"unknown\", -3)\n"
      "SQLGetDiagRec(statement, 4, 1, 256)\nSQLGetDiagRec(statement, 4, 2, 256)\n",
      platform.calls(FakePlatform::sql));
  EXPECT_EQ(
      "Trying to run: alloc stmt\nSQLAllocHandle failed\n"
      "Trying to run: Exec Direct\nunprepared: unknown\n",
      standardError());
  leaves("statement 1");  // of the statement that failed
}

TEST_F(Database, CountsTables) {
  EXPECT_EQ(0U, connection.NumTables());
  EXPECT_EQ("Trying to run: alloc stmt\nSQLAllocHandle failed\n", standardError());
  connect();
  platform.answer("SQLTables", {{"T"}, {"a"}, {"b"}});
  EXPECT_EQ(2U, connection.NumTables());
  EXPECT_EQ(
      "SQLAllocHandle(statement, 2)\nSQLTables(3, null, 0, null, 0, null, 0, \"TABLE\", -3)\n"
      "SQLFetch(3)\nSQLFetch(3)\nSQLFetch(3)\nSQLFreeHandle(statement, 3)\n",
      platform.calls(FakePlatform::sql));
  platform.fail("SQLTables");
  EXPECT_EQ(0U, connection.NumTables());
  EXPECT_EQ("Trying to run: SQLTables\nSQLTables failed\n", standardError());
}

TEST_F(Database, TurnsRowsIntoObjects) {
  const std::string name127(127, 'N');
  const std::string value127(127, 'v');
  const struct {
    FakePlatform::Table table;
    std::string first, others;
  } rows[] = {
      {{{"A"}}, "", ""},
      {{{}, {}}, "", ""},
      {{{"A"}, {"1"}, {"2"}}, R"("A": "1")", R"(, {"A": "2"})"},
      {{{"A", "A"}, {"x", null}}, R"("A": "x", "A": "NULL")", ""},
      {{{"A", "B", "C"}, {"abc    ", "two words", " x"}}, R"("A": "abc", "B": "two", "C": "")", ""},
      {{{name127 + "MORE"}, {value127 + "more"}}, '"' + name127 + "\": \"" + value127 + '"', ""},
      {{{"A", "B"}, {std::string("a\0b", 3), "t\t\xC3"}}, "\"A\": \"a\", \"B\": \"t\t\xC3\"", ""},
      {{{"A", "B"}, {unreadable, "2"}}, R"("B": "2")", ""},
      // Only the first row ends the result when it has no members.
      {{{"A"}, {unreadable}, {"2"}}, "", ""},
      {{{"A"}, {"1"}, {unreadable}, {"3"}}, R"("A": "1")", R"(, {}, {"A": "3"})"},
  };
  connect();
  for (const auto& [table, first, others] : rows) {
    platform.answer("q", table);
    EXPECT_EQ(first.empty() ? "[]" : "[{" + first + '}' + others + ']', query("q"));
    EXPECT_EQ('{' + first + '}', compactOf(connection.queryOne("q")));
  }
}

TEST_F(Database, FindsAValueByItsUpperCaseColumn) {
  connect();
  platform.answer("q", {{"A", "NUM_COLUMNS", "lower"}, {"1", "7", "x"}, {"2", "8", "y"}});
  platform.answer("none", {{"A"}});
  for (const char* column : {"num_columns", "NUM_COLUMNS"})
    EXPECT_EQ("\"7\"", compactOf(connection.queryValue("q", column))) << column;
  for (const char* column : {"lower", "num", ""})
    EXPECT_EQ("null", compactOf(connection.queryValue("q", column))) << column;
  EXPECT_EQ("null", compactOf(connection.queryValue("none", "a")));
}

// A failing step costs what it would have brought, is reported where it is looked at, and ends nothing else.
TEST_F(Database, SurvivesAFailureAtEveryStep) {
  const struct {
    const char* failing;
    long nth, code;
    const char *rows, *error;
  } rows[] = {
      {"SQLAllocHandle", 1, -1, "[]", "Trying to run: alloc stmt\nSQLAllocHandle failed\n"},
      {"SQLExecDirect", 1, SQL_NO_DATA, "[]", "Trying to run: Exec Direct\nSQLExecDirect failed\n"},
      {"SQLNumResultCols", 1, -1, "[]", ""},
      {"SQLDescribeCol", 1, -1, R"([{"": "1", "B": "2"}, {"": "3", "B": "4"}])", ""},
      {"SQLFetch", 1, -1, "[]", ""},
      {"SQLFetch", 2, -1, R"([{"A": "1", "B": "2"}])", ""},
      {"SQLGetData", 3, -1, R"([{"A": "1", "B": "2"}, {"B": "4"}])", ""},
      {"SQLFreeHandle", 1, -1, R"([{"A": "1", "B": "2"}, {"A": "3", "B": "4"}])", ""},
      {"SQL", 0, SQL_SUCCESS_WITH_INFO, R"([{"A": "1", "B": "2"}, {"A": "3", "B": "4"}])", ""},
  };
  connect();
  platform.answer("q", {{"A", "B"}, {"1", "2"}, {"3", "4"}});
  for (const auto& [failing, nth, code, expected, error] : rows) {
    platform.heal();
    platform.fail(failing, nth, code);
    EXPECT_EQ(expected, query("q")) << failing << ' ' << nth;
    EXPECT_EQ(error, standardError()) << failing;
    EXPECT_EQ(std::string::npos, platform.open().find("statement")) << failing << ' ' << nth;
  }
}
