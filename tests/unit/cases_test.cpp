#include "tests/cases.h"

#include <unistd.h>

#include <cstring>

#include "collectors/mirel_collectors_native.h"
#include "collectors/mirel_collectors_system.h"
#include "db/mirel_db_connection.h"
#include "generator/mirel_generator_template.h"
#include "generator/mirel_generator_walk.h"
#include "http/mirel_http_client.h"
#include "http/mirel_http_response.h"
#include "json/mirel_json_parser.h"
#include "json/mirel_json_writer.h"
#include "tests/unit/fake_platform.h"
#include "tests/unit/values.h"

/// What stands in cases.txt and reports.txt.
class Core : public PlatformTest {
 protected:
  static unsigned long number(const std::string& text) {
    return text == "end" ? mirel_string::npos : std::stoul(text);
  }
  static mirel_string string(const std::string& bytes) { return {bytes.data(), bytes.size()}; }
  static std::string chars(const mirel_string& text) { return text.c_str(); }
  static std::string part(mirel_string text, unsigned long position, unsigned long length) {
    const mirel_string copied = text.substr(position, length);
    return copied == std::move(text).substr(position, length) ? chars(copied) : "two ways";
  }
  static std::string bracketed(const std::vector<mirel_string>& texts) {
    std::string all;
    for (const mirel_string& text : texts)
      all += '<' + chars(text) + '>';
    return all;
  }

  std::string copied(const std::string& text, unsigned long size) const {
    std::string target = "########";
    string(text).copy_to(target.data(), size);
    return target;
  }

  /// On a machine that cannot tell all.
  std::string native(const std::string& word, const std::string& item) {
    platform.os.name.status = platform.cpu.speed.status = platform.disk.free.status = 7;
    platform.cpu.total.value = -1;
    platform.disk.total.value = 0x7FFFFFFFFFFFFFFF;
    host.collect();
    mirel_string fact = "no such word";
    nativeFact({&instance, &host, &customer}, string(word), string(item), &fact);
    return chars(fact);
  }

  std::string read(const std::string& home, const std::string& path) {
    for (const char* file : {"/f", "/h/f", "/h/h/f", "/opt/kato/f"})
      platform.files[file] = std::string("in ") + file;
    platform.files["/empty"] = "";
    platform.files["/nul"] = std::string("ab\0cd", 5);
    platform.home = home == "unset" ? nullptr : home.c_str();
    return chars(readFile(string(path)));
  }

  std::string executed(const std::string& output) {
    platform.commands["command"] = output;
    return chars(executeGet("command"));
  }

  std::string active(const std::string& output) {
    platform.commands["kato list active databases"] = output;
    return bracketed(getActiveDatabases());
  }

  /// Prepares the statement "q" by the lines of its table.
  DBConnection& with(const Arguments& lines) {
    FakePlatform::Table table;
    for (const std::string& line : lines)
      table.push_back(FakePlatform::cells(line, ','));
    platform.answer("q", table);
    if (!connection.connected())
      connection.connect("SAMPLE");
    return connection;
  }

  std::string messages(const Arguments& texts) {
    with({});
    platform.refuse("q", texts);
    EXPECT_EQ("[]", compactOf(connection.query("q")));
    return standardError().substr(std::strlen("Trying to run: Exec Direct\n"));
  }

  std::string sent(std::size_t length, unsigned int limit) {
    std::string data, chunks;
    for (std::size_t i = 0; i < length; ++i)
      data += static_cast<char>('0' + i % 61);
    platform.sendLimit = limit;
    EXPECT_TRUE(socket.open("h", 1) && socket.send(string(data)));
    EXPECT_EQ(data, platform.sent.back());
    std::istringstream calls(platform.calls("sqloPdbSendBuffer"));
    for (std::string call; std::getline(calls, call);)
      chunks += call.substr(call.find(' ') + 1, call.find(')') - call.find(' ') - 1) + ' ';
    platform.forgetCalls();
    return chunks;
  }

  std::string received(const Arguments& pieces) {
    platform.responses = {pieces};
    EXPECT_TRUE(socket.open("h", 1));
    platform.forgetCalls();
    const std::string text = chars(socket.recv());
    return std::to_string(platform.count("sqloPdbRecvBuffer")) + ": " + text;
  }

  /// Written the same before and after somebody looked at its members.
  static std::string readBack(Value* parsed) {
    const std::unique_ptr<Value> root(parsed), copy(root->clone());
    const mirel_string text = root->stringify(0);
    const std::string read = compact(root.get());
    return text == root->stringify(0) && text == copy->stringify(0) ? read : chars(text);
  }

  std::string got(const std::string& response) {
    platform.responses = {{response}};
    return chars(HttpClient("h", 1).get("/"));
  }

  /// Fed byte by byte or at once, with more behind it, a response is complete at its last byte, or never.
  static std::string ends(const std::string& whole) {
    const std::string more = whole + "more";
    HttpResponse atOnce, byteByByte;
    std::size_t count = 0;
    while (count < more.size() && !byteByByte.complete())
      count += byteByByte.receive(&more[count], 1);
    const bool same = atOnce.receive(more.data(), more.size()) == count;
    return !same ? "?" : count == whole.size() ? "yes" : byteByByte.complete() ? "elsewhere" : "no";
  }

  InstanceCollector instance;
  PlatformCollector host;
  CustomerCollector customer;
  DBConnection connection;
  Socket socket;
};

TEST_F(Core, AnswersItsCases) {
  using A = const Arguments&;
  JsonParser parser;
  sqloPdbCommFncInit();
  expectCases(
      MIREL_UNIT "/cases.txt",
      {
          {"substr", [](A a) { return part(string(a[0]), number(a[1]), number(a[2])); }},
          {"ltrim", [](A a) { return chars(string(a[0]).ltrim()); }},
          {"upper", [](A a) { return chars(string(a[0]).upper()); }},
          {"find",
           [](A a) {
             const unsigned long position = string(a[0]).find(string(a[1]), number(a[2]));
             return position == mirel_string::npos ? "none" : std::to_string(position);
           }},
          {"replace_all", [](A a) { return chars(string(a[0]).replace_all(string(a[1]), string(a[2]))); }},
          {"copy_to", [&](A a) { return copied(a[0], number(a[1])); }},
          {"escape", [](A a) { return chars(escapeJson(string(a[0]))); }},
          {"unescape", [](A a) { return chars(reverseEscape(string(a[0]))); }},
          {"parse", [&](A a) { return readBack(parser.parse(string(a[0]))); }},
          {"layout",
           [&](A a) {
             return chars(std::unique_ptr<Value>(parser.parse(string(a[0])))->stringify(number(a[1])));
           }},
          {"split", [](A a) { return bracketed(Generator::split_args(string(a[0]), number(a[1]))); }},
          {"native", [&](A a) { return native(a[0], a[1]); }},
          {"owner", [](A) { return chars(getInstName()); }},
          {"readFile", [&](A a) { return read(a[0], a[1]); }},
          {"execute", [&](A a) { return executed(a[0]); }},
          {"active", [&](A a) { return active(a[0]); }},
          {"rows", [&](A a) { return compactOf(with(a).query("q")); }},
          {"one", [&](A a) { return compactOf(with(a).queryOne("q")); }},
          {"value",
           [&](A a) {
             return compactOf(with({a.begin() + 1, a.end()}).queryValue("q", string(a[0])));
           }},
          {"messages", [&](A a) { return messages(a); }},
          {"send", [&](A a) { return sent(number(a[0]), static_cast<unsigned int>(number(a[1]))); }},
          {"receive", [&](A a) { return received(a); }},
          {"get", [&](A a) { return got(a[0]); }},
          {"ends", [](A a) { return ends(a[0] + "\r\n\r\n" + a[1]); }},
      });
  sqloPdbCommFncTerm();
}

// In a process of its own, because the program ends each time.
TEST_F(Core, ParserEndsTheProgramWithItsReport) {
  const auto expectReport = [&](const Arguments& inputs, const std::string& report) {
    const int status = exitStatusOf([&] {
      JsonParser parser;
      for (const std::string& input : inputs)
        parser.parse(string(input));
    });
    const std::string printed = standardOutput();
    if (status != 255 || !printed.starts_with("Expecting one of: (") || !printed.ends_with(report + '\n') ||
        printed.find('\n') != printed.size() - 1)
      fprintf(stderr, "%s\n%d %s", inputs.back().c_str(), status, printed.c_str());
    platform.forgetCalls();
  };
  const auto run = [&] {
    for (const Case& one : casesOf(MIREL_UNIT "/reports.txt"))
      expectReport(one.arguments, "Expecting one of: " + one.result);
    const std::string whole = kDefaultTemplate;
    bool inText = false;
    for (std::size_t length = 0; length < whole.size(); ++length) {
      // A quote that opens a text and stands last closes it, too, and so counts twice.
      const bool quote = length > 0 && whole[length - 1] == '"';
      inText = inText != quote;
      expectReport({whole.substr(0, length)},
                   " on line 1 column " + std::to_string(length + (quote && inText ? 2 : 1)));
    }
    _exit(0);
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(0), "^$");
}
