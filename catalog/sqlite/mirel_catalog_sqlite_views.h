#pragma once
/// The catalog's views as data: for each column what it is called and the SQL expression behind it.
///
/// A view is evaluated when it is queried, and of its columns only those that the query mentions.

#include <span>

struct Column {
  const char* name;
  const char* type;        ///< as in a CREATE TABLE; HIDDEN marks the argument of a table function
  const char* expression;  ///< over the view's source; ?1 is the argument
};

struct View {
  const char* schema;
  const char* name;
  std::span<const Column> columns;  ///< 31 at most
  const char* source;               ///< FROM clause and what follows it
};

extern const std::span<const View> kViews;

/// The schemas that the views live in.
extern const std::span<const char* const> kSchemas;

/// The WITH clause in front of every query on a source: named results that cost nothing where they are not
/// used. Its %s takes one of the two texts below. It relies on sysstat.dbstat, the engine's table of pages.
extern const char* const kCommon;

inline constexpr const char* kAnalyzed = "main.sqlite_stat1";
inline constexpr const char* kNeverAnalyzed = "(select null as tbl, null as stat where 0)";
