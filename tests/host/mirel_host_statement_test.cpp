#include "platform/host/mirel_host_statement.h"

#include <gtest/gtest.h>

#include "platform/host/mirel_host_utf8.h"

namespace {

using namespace host;

constexpr const char *LITE = "SQLite", *POSTGRES = "PostgreSQL", *SERVER = "Microsoft SQL Server",
                     *OTHER = "X";

TEST(Statements, AreAdaptedInFromClausesOnly) {
  const std::string deep(100000, '('), shut(100000, ')');
  const struct {
    const char* engine;
    std::string statement, expected;  // "": untouched
    const char* version = "16.1";
  } rows[] = {
      {LITE, "from table(sysproc.f())", "from sysproc.f()"},
      {POSTGRES, "from TABLE(f(-2)) where a like '%(%'", "from f(-2) where a like '%(%'"},
      {LITE, "from/**/Table /*1*/ ( /*2*/\"f\" . [g] (')', (1)) --)\n ) t",
       "from/**/ /*1*/  /*2*/\"f\" . [g] (')', (1)) --)\n  t"},
      {POSTGRES, "from a, table(f(1)) x join table(g(2)) y on x.b = y.b, lateral table(h((3)))",
       "from a, f(1) x join g(2) y on x.b = y.b, lateral h((3))"},
      {LITE, "from (table(f(1)) join (a join table(g(2))))", "from (f(1) join (a join g(2)))"},
      {LITE, "from table(f((select b from table(g(1)), c)))", "from f((select b from g(1), c))"},
      {LITE, "from a where b in (select c from table(f(1))) order by d",
       "from a where b in (select c from f(1)) order by d"},
      {LITE, "from table(f" + deep + shut + ")", "from f" + deep + shut},
      {OTHER, "from table(f(1))", ""},
      {LITE, "select a, table(f(1)) from b where c = table(f(1)) group by d, table(f(1))", ""},
      {LITE, "select (a, table(f(1))) from b; insert into c, table(f(1))", ""},
      {LITE, "from f(a, table(g(1))), s.table(h(2)), tables(i(3)), table j, (k(4))", ""},
      {LITE, "from table(a), table(f(1) g), table(f(1), g(2)), table((f(1))), table(), table(f.(1))", ""},
      {LITE, "from table(select (1)), table (values (1))", ""},
      {LITE,
       "select 'from table(f(1))', \"from table(f(1))\", [from table(f(1))], `from table(f(1))` -- from "
       "table(f(1))",
       ""},
      {LITE, "select '''' /* ' */ from table(f(1)) -- '", "select '''' /* ' */ from f(1) -- '"},
      {LITE, "select 1 /* /* */ from table(f(1))", "select 1 /* /* */ from f(1)"},
      {POSTGRES, "select 1 /* /* */ from table(f(1)) */", ""},
      {POSTGRES, "select $a$ ' $b$ $a$, $1, x$y$ from table(f(1))",
       "select $a$ ' $b$ $a$, $1, x$y$ from f(1)"},
      {POSTGRES, "select e'\\'', array[1] from table(f(1))", "select e'\\'', array[1] from f(1)"},
      {POSTGRES, "select $1$2 from table(f(1))", "select $1$2 from f(1)"},
      {POSTGRES, "select E'''\\' from table(f(1))'", ""},
      {LITE, "from table(f(1)", ""},
      {LITE, "select (1 from table(f(1))", ""},
      {LITE, "select lateral table(f(1))", ""},
      {LITE, "from table(f(1)))", ""},
      {LITE, "from table(f(1)) where a = 'b", ""},
      {LITE, "from table(f(1)) /* a", ""},
      {POSTGRES, "from table(f(1)), $a$ $b$", ""},
      {LITE, "", ""},
      {POSTGRES, "select count(*) from (select distinct a from b)",
       "select count(*) from (select distinct a from b) as mirel_1", "15.0.18"},
      {POSTGRES, "from (select 1), ((select 2) as x cross join (values (3)) on c) where d in (select 4)",
       "from (select 1) as mirel_1, ((select 2) as x cross join (values (3)) as mirel_2 on c) where d in "
       "(select 4)",
       "9.6"},
      {POSTGRES, "from (select 1) a, (select 2) as b, (select 3)\"c\", f((select 4)), (a join b)", "", "15"},
      {POSTGRES, "from (select 1 from table(f(2))) order by 1", "from (select 1 from f(2)) order by 1",
       "16.0.1"},
      {LITE, "from (select 1)", "", "3"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(row.expected, adaptStatement(row.statement, dialectOf(row.engine, row.version)).value_or(""))
        << row.statement.substr(0, 200);
  }
}

TEST(QuotedNames, AreThoseTheEngineTakesForNames) {
  const std::string limit(63, 'n');
  const struct {
    const char* engine;
    std::string statement, name;
    bool quoted;
  } rows[] = {
      {OTHER, "select a as \"b\"\"c\", 'd' from e", "b\"c", true},
      {OTHER, "select a as \"b\", 'd' from e", "a", false},
      {OTHER, "select a as \"b\", \"c", "b", true},
      {OTHER, "select a as \"b\", \"c", "c", false},
      {OTHER, "select '\"a\"' -- \"a\"\n /* \"a\" */", "a", false},
      {OTHER, "select `a`", "a", true},
      {OTHER, "select b[a]", "a", false},
      {POSTGRES, "select $$ \"a\" $$, b as [a]", "a", false},
      {LITE, "select b as [a b]", "a b", true},
      {SERVER, "select b as [a]]b]", "a]b", true},
      {POSTGRES, "select 1 as \"" + limit + "nnn\"", limit, true},  // the engine cuts names
      {OTHER, "select 1 as \"name\"", "nam", false},
      {OTHER, "", "", false},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(row.quoted, QuotedNames(row.statement, dialectOf(row.engine, "")).include(row.name))
        << row.statement << " " << row.name;
  }
}

TEST(Utf8, IsCutBetweenCharacters) {
  const struct {
    std::string text;
    std::size_t size;
    std::string expected;
  } rows[] = {
      {"abc", 4, "abc"}, {"abc", 3, "ab"},
      {"abc", 1, ""},    {"aé", 4, "aé"},
      {"aé", 3, "a"},    {"€€", 6, "€"},
      {"€€", 5, "€"},    {"😀", 4, ""},
      {"😀😀", 8, "😀"},    {"a\x80\x80\x80\x80\x80", 6, "a\x80\x80\x80\x80"},  // another encoding
  };
  for (const auto& row : rows) {
    std::string buffer(row.size, '?');
    EXPECT_EQ(row.expected.size(), copyCut(row.text, buffer.data(), row.size)) << row.text << row.size;
    EXPECT_STREQ(row.expected.c_str(), buffer.c_str()) << row.text << row.size;
  }
}

}  // namespace
