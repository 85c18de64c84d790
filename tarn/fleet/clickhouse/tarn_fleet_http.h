#pragma once
/// ClickHouse's HTTP interface: a statement goes out, the whole answer comes back, or a problem.
///
/// The server is asked to hold an answer until the query has ended (`wait_end_of_query`), so an error that
/// comes after the first rows is still an error and not a short answer; an answer that breaks off on its way
/// breaks its chunks. One connection is kept. User and password travel as headers, so no log shows them.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tarn {

struct HttpProblem {
  int code = 0;      ///< ClickHouse's number of the error; 0 when the server said none, or nothing
  std::string text;  ///< one line
};
using HttpOutcome = std::optional<HttpProblem>;

class FleetHttp {
 public:
  struct Server {
    std::string address;         ///< `HOST:PORT`
    std::string user, password;  ///< empty: the server's default
  };
  explicit FleetHttp(const Server& server);
  ~FleetHttp();
  FleetHttp(const FleetHttp&) = delete;
  FleetHttp& operator=(const FleetHttp&) = delete;

  /// The database in which statements run; none: the server's default.
  void setDatabase(const std::string& name) { m_database = name; }

  /// Hands out the answer piece by piece; false from `take` ends it, which is no problem.
  using TakeBytes = std::function<bool(std::string_view bytes)>;
  HttpOutcome ask(std::string_view statement, const TakeBytes& take = {});

  /// Runs an INSERT with the rows that `give` hands out piece by piece, until an empty one. A piece has to
  /// last until the next call. As long as the server is at it, it is among the server's queries, with an
  /// identifier that begins with `tarn.DATABASE.`
  using GiveBytes = std::function<std::string_view()>;
  HttpOutcome insert(std::string_view statement, const GiveBytes& give);

 private:
  struct Handle;
  struct Exchange;

  std::string target(std::size_t longestStatement) const;
  std::string insertTarget(std::string_view statement);
  HttpOutcome exchange(Exchange* exchange);

  std::string m_address, m_database;
  std::uint64_t m_inserts = 0;
  std::unique_ptr<Handle> m_handle;
};

}  // namespace tarn
