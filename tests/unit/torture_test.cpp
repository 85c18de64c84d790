// Two whole runs of the default template, with a database: one that prints and writes a file, one that sends.
// Each is repeated with every allocation, and every call of the platform, failing in turn. The build points
// the core's allocations, and nobody else's, to the functions below.

#include <gmock/gmock.h>

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <new>
#include <set>
#include <unordered_set>

#include "driver/mirel_driver_run.h"
#include "generator/mirel_generator_template.h"
#include "http/mirel_http_socket.h"
#include "tests/unit/fake_platform.h"

namespace {

long s_allocations;                          ///< of this run
long s_firstFailing = 1, s_lastFailing = 0;  ///< of them, counted from 1
/// Allocated and not released. A run that exits leaves its blocks here for good.
std::unordered_set<void*>& s_blocks = *new std::unordered_set<void*>;

bool refuses() {
  ++s_allocations;
  return s_firstFailing <= s_allocations && s_allocations <= s_lastFailing;
}

bool isText(const char* file) {
  return std::strcmp(file, "mirel_string") == 0;
}

}  // namespace

extern "C" {

void* tortured_new(std::size_t size) {
  if (refuses())
    throw std::bad_alloc();
  return *s_blocks.insert(::operator new(size)).first;
}

void tortured_delete(void* object) {
  s_blocks.erase(object);
  ::operator delete(object);
}

void tortured_sized_delete(void* object, std::size_t) {
  tortured_delete(object);
}

// The one block that is no text holds a file. Its failing has a documented result, as that of other calls.
int tortured_alloc(void** block, void* pool, unsigned long size, unsigned int flags, const char* file,
                   unsigned int line) {
  if (!isText(file))
    return _ossMemAlloc(block, pool, size, flags, file, line);
  *block = refuses() ? nullptr : *s_blocks.insert(std::calloc(1, size)).first;
  return *block == nullptr ? -1 : 0;
}

int tortured_free(void** block, unsigned long reserved1, unsigned long reserved2, const char* file,
                  unsigned int line) {
  if (!isText(file))
    return _ossMemFree(block, reserved1, reserved2, file, line);
  s_blocks.erase(*block);
  std::free(std::exchange(*block, nullptr));
  return 0;
}

}  // extern "C"

namespace {

/// What a document owes whatever fails: its keys and brackets, but for the rows of queries, each in its
/// place.
std::string skeleton(const std::string& document) {
  std::istringstream lines(document);
  std::string result;
  std::size_t depth = 0;
  for (std::string line; std::getline(lines, line);) {
    const std::size_t begin = line.find_first_not_of(' ');
    if (begin == std::string::npos)
      continue;
    depth -= line[begin] == '}' || line[begin] == ']';
    result += begin == 2 * depth ? "" : "misplaced: ";
    result += depth > 3 ? "" : line.substr(0, line.find(": ")) + '\n';
    depth += line.ends_with('{') || line.ends_with('[');
  }
  return result;
}

/// How many members of `whole` are the empty text or without a value in `found`; -1 when more is different.
long lostMembers(const std::string& whole, const std::string& found) {
  std::istringstream expected(whole), lines(found);
  long lost = 0;
  for (std::string line, due; std::getline(lines, line);) {
    std::getline(expected, due);
    if (line == due)
      continue;
    const std::string key = due.substr(0, due.find(": ") + 2), deeper = due.substr(0, due.find('"')) + ' ';
    if (due.ends_with('{') || due.ends_with('['))
      while (std::getline(expected, due) && (due.empty() || due.starts_with(deeper))) {
      }
    const std::string end = due.ends_with(',') ? "," : "";
    if (line != key + "\"\"" + end && line != key + "\"null\"" + end)
      return -1;
    ++lost;
  }
  return expected.peek() == EOF ? lost : -1;
}

class Torture : public PlatformTest, public testing::WithParamInterface<bool> {
 protected:
  struct Outcome {
    int status;            ///< -1: the run came back
    std::string document;  ///< printed and written, or posted
    std::string errors;
    long calls;                   ///< of the platform
    std::set<std::string> asked;  ///< commands, queries and files
  };

  const bool sending = GetParam();

  /// A run in which the `nth` call that begins like this fails. It must leave nothing behind, and no half.
  Outcome outcome(const char* call = "", long nth = -1) {
    FakePlatform fake;
    prepare(fake);
    fake.fail(call, nth);
    s_allocations = 0;
    const std::size_t blocks = s_blocks.size();
    const char* arguments[] = {"mirel", "-s", "-z", "-c", "us", "-d", "sample", "-h", "server", "-o", "/f"};
    const auto start = [&] {
      EXPECT_EQ(0, run(sending ? 11 : 10, const_cast<char**>(arguments) + !sending));
    };
    Outcome result = {exitStatusOf(start), standardOutput(), standardError(), fake.count(""), {}};
    std::istringstream asked(fake.calls("popen") + fake.calls("SQLExecDirect") + fake.calls("open("));
    for (std::string line; std::getline(asked, line);)
      result.asked.insert(line.substr(line.find('"')));
    const std::string text = sending ? fake.sent.size() < 2 ? "" : fake.sent[1] : result.document;
    const std::size_t begin = std::min(text.size(), text.find('{'));
    result.document = text.substr(begin, text.rfind('}') + 1 - begin);
    const std::string length = "Content-Length: " + std::to_string(result.document.size()) + "\r\n\r\n";
    const bool whole = text.empty() || text.ends_with("\r\nHost: node1\r\n" + length + result.document);
    // A request that falls short of what it announces is told apart by any server. Want of memory makes none.
    const bool mayFallShort = nth != -1 && *call == '\0';
    EXPECT_TRUE(!sending || whole || mayFallShort) << text;
    if (sending && !whole)
      result.document = "";
    if (result.status == -1) {
      EXPECT_EQ("", fake.open() + (s_blocks.size() == blocks ? "" : "blocks"))
          << nth << ' ' << s_firstFailing;
    }
    // A server would wait for a request that has lost itself.
    EXPECT_TRUE(nth != -1 || std::ranges::count(fake.sent, "") == 0) << s_firstFailing;
    EXPECT_TRUE(fake.files["/f"].empty() || fake.files["/f"] == result.document) << nth;
    return result;
  }

 private:
  /// Answers for every query of the default template, and the exchange with the server.
  void prepare(FakePlatform& fake) {
    const std::string text = kDefaultTemplate;
    for (std::size_t at = text.find("\"sql "); at != std::string::npos; at = text.find("\"sql ", at + 1)) {
      std::istringstream command(text.substr(at + 5, text.find('"', at + 1) - at - 5));
      std::string kind, column, query;
      command >> kind >> column;
      std::getline(kind == "value" ? command >> std::ws : command, query);
      for (char& character : column)
        character = static_cast<char>(std::toupper(character));
      if (kind == "value")
        fake.answer(query, {{column}, {"17"}});
      else
        fake.answer("select" + query, {{"A", "B"}, {"1", "b c"}, {"2", "\"\\"}});
    }
    fake.answer("one", {{"A"}, {"1"}});
    fake.commands["katolevel"] = "\"1\"\n2\n";
    fake.files["/opt/kato/katonodes.cfg"] = "0 node1 0\n";
    fake.responses = {{"HTTP/1.1 200 OK\r\n\r\n" + text.substr(0, text.size() - 1) +
                       ", \"$foreach table [t]\": {\"a\": [{\"b\": \"sql one one\"}, \"c\"]}"
                       ", \"$foreach none [n]\": {\"a\": \"execute nothing\"}}"},
                      {"HTTP/1.1 201 Created\r\n\r\nthanks"}};
  }
};

// The document arrives as it should be but for members that are told, or not at all, and nothing is run that
// has lost a part of itself.
TEST_P(Torture, EveryAllocationFails) {
  const Outcome faultless = outcome();
  const long allocations = s_allocations;
  const std::string unconnected = outcome("SQLConnect", 1).document;
  long runs = 0, lost = 0, undelivered = 0;
  for (const bool forGood : {false, true})
    for (s_firstFailing = 1; s_firstFailing <= allocations; s_firstFailing += forGood ? 7 : 1, ++runs) {
      s_lastFailing = forGood ? LONG_MAX : s_firstFailing;
      const Outcome result = outcome();
      EXPECT_EQ(-1, result.status) << s_firstFailing;
      EXPECT_TRUE(std::ranges::includes(faultless.asked, result.asked)) << s_firstFailing;
      const std::string told = "out of memory\n";
      EXPECT_TRUE(forGood ? result.errors.ends_with(told) : result.errors == told) << s_firstFailing;
      const bool isServer = sending && s_firstFailing == 3;
      EXPECT_TRUE(forGood || s_firstFailing > 4 || isServer == result.document.empty()) << s_firstFailing;
      if (result.document.empty()) {
        undelivered += !forGood && !result.asked.empty();
        continue;
      }
      const bool isDatabase = s_firstFailing == 2;
      const long members = lostMembers(isDatabase ? unconnected : faultless.document, result.document);
      EXPECT_TRUE(!forGood && (members == 0 || members == 1)) << s_firstFailing << result.document;
      lost += members;
    }
  s_lastFailing = 0;
  EXPECT_LT(1500, runs);
  EXPECT_LT(runs / 2, lost);
  EXPECT_EQ(sending ? 9 : 2, undelivered) << "after the tree: new keys, the result's text and its request";
  std::fprintf(stderr, "Torture: %ld runs passed\n", runs);
}

// A call that fails costs what it would have told; few of them cost the document.
TEST_P(Torture, EveryCallFails) {
  const Outcome faultless = outcome();
  const std::string whole = skeleton(faultless.document);
  const std::string unconnected = skeleton(outcome("SQLConnect", 1).document);
  long undelivered = 0;
  for (long call = 1; call <= faultless.calls; ++call) {
    const Outcome result = outcome("", call);
    const std::string found = skeleton(result.document);
    EXPECT_TRUE(found == whole || found == unconnected || found.empty()) << call << result.document;
    EXPECT_TRUE(result.status == -1 || found.empty()) << call;
    undelivered += found.empty();
  }
  EXPECT_GT(50, undelivered);
  EXPECT_THAT(outcome("ossSnprintf", 0).errors, testing::StartsWith("out of memory\nout of memory\n"));
  std::fprintf(stderr, "Torture: %ld runs passed\n", faultless.calls);
}

INSTANTIATE_TEST_SUITE_P(, Torture, testing::Bool(),
                         [](const auto& row) { return row.param ? "Sending" : "Printing"; });

using Send = PlatformTest;

TEST_F(Send, EndsWhereNothingIsTaken) {
  Socket socket;
  platform.sendLimit = 0;
  EXPECT_TRUE(socket.open("h", 1));
  EXPECT_FALSE(socket.send("text"));
  EXPECT_EQ("failed to send: text\n", standardOutput());
  EXPECT_TRUE(socket.close());
}

}  // namespace
