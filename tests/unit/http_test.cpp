#include "http/mirel_http_client.h"
#include "http/mirel_http_response.h"
#include "tests/unit/fake_platform.h"

/// The whole sequence of an exchange stands in the golden send run.
class Http : public PlatformTest {
 protected:
  void SetUp() override { sqloPdbCommFncInit(); }
  void TearDown() override { sqloPdbCommFncTerm(); }

  Socket socket;
  HttpClient client{"h", 65536 + 80};
};

TEST_F(Http, TellsWhichStepOfConnectingFailed) {
  const struct {
    std::string failing, arguments;
    const char* message;
  } rows[] = {
      {"sqloPdbCreateSocket", "(0)\n", "failed to create socket\n"},
      {"sqloPdbTcpIpResolveHostName", "(\"h\", 10, 1)\n", "failed to get hostname\n"},
      {"sqloPdbInitNodeAddrHndl", "(0, \"h\", 65616)\n", "failed to init node addr handle\n"},
      {"sqloPdbConnectSocket", "(3, \"h:65616\")\n", "failed to connect\n"},
  };
  for (const auto& [failing, arguments, message] : rows) {
    platform.fail(failing);
    EXPECT_STREQ("", client.post("/", "x").c_str());
    EXPECT_EQ(message, standardError());
    EXPECT_TRUE(platform.calls(FakePlatform::network).ends_with(failing + arguments)) << failing;
  }
}

TEST_F(Http, SendsInChunksAndContinuesShortSends) {
  const struct {
    std::size_t length;
    unsigned int limit;
    std::vector<int> chunks;
  } rows[] = {{0, 1024, {}}, {1024, 1024, {1024}}, {2500, 1024, {1024, 1024, 452}}, {1030, 600, {1024, 430}}};
  EXPECT_TRUE(socket.open("h", 1));
  for (const auto& [length, limit, chunks] : rows) {
    std::string data, calls;
    for (std::size_t i = 0; i < length; ++i)
      data += static_cast<char>('0' + i % 61);
    for (const int chunk : chunks)
      calls += "sqloPdbSendBuffer(1, " + std::to_string(chunk) + ")\n";
    platform.forgetCalls();
    platform.sendLimit = limit;
    platform.sent.back().clear();
    EXPECT_TRUE(socket.send(data.c_str()));
    EXPECT_EQ(data, platform.sent.back());
    EXPECT_EQ(calls, platform.calls(FakePlatform::network));
  }
}

TEST_F(Http, ShowsTheChunkThatCannotBeSentAndStillReceives) {
  platform.responses = {{"HTTP/1.1 413 Too Large\r\n\r\n"}};
  platform.fail("sqloPdbSendBuffer", 2);
  const std::string body = std::string(2000, 'a') + std::string(1000, 'b');
  const std::string request = "POST /tarn HTTP/1.1\r\nHost: node1\r\nContent-Length: 3000\r\n\r\n" + body;
  EXPECT_STREQ("HTTP/1.1 413 Too Large\r\n\r\n", client.post("/tarn", body.c_str()).c_str());
  EXPECT_EQ("failed to send: " + request.substr(1024, 1024) + "\n", standardOutput());
  EXPECT_EQ(request.substr(0, 1024), platform.sent[0]);
}

TEST_F(Http, ReceivesUntilTheResponseEnds) {
  const std::string long3000 = "HTTP/1.0 200\r\n\r\n" + std::string(3000, 'x');
  const std::string length2 = "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n";
  const struct {
    std::vector<std::string> pieces;
    std::string text;
    int receives;
  } rows[] = {
      {{}, "", 1},
      {{long3000}, long3000, 4},
      {{"no HTTP", "", " at all"}, "no HTTP at all", 4},
      {{std::string("a\0b", 3), "c"}, "ac", 3},
      {{length2, "", "{", "}", "more"}, length2 + "{}", 4},
      // What a NUL byte costs still counts towards the length.
      {{length2 + '\0', "}", "more"}, length2 + "}", 2},
      {{"half", "a hard error, then"}, "half", 2},
  };
  for (const auto& [pieces, text, receives] : rows) {
    platform.responses = {pieces};
    platform.forgetCalls();
    platform.fail("sqloPdbRecvBuffer", text == "half" ? 2 : 99, 0x810F0036);
    EXPECT_TRUE(socket.open("h", 1));
    EXPECT_EQ(text, socket.recv().c_str());
    EXPECT_EQ(receives, platform.count("sqloPdbRecvBuffer")) << text;
  }
}

TEST_F(Http, GetKeepsWhatFollowsTheFirstEmptyLine) {
  const std::pair<const char*, const char*> rows[] = {
      {"HTTP/1.1 404 Not Found\r\n\r\nsorry\r\n\r\n", "sorry\r\n\r\n"},
      {"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n2\r\n{}\r\n0\r\n\r\n", "2\r\n{}\r\n0\r\n\r\n"},
      {"no empty line", "empty line"},
      {"abc", ""},
      {"", ""},
  };
  for (const auto& [response, body] : rows) {
    platform.responses = {{response}};
    platform.fail("sqloPdbCloseSocket");
    EXPECT_STREQ(body, client.get("/").c_str());
    EXPECT_EQ("failed to close socket\n", standardError());
  }
}

// Fed byte by byte or at once, a response is complete at its last byte, or never.
TEST_F(Http, ResponseKnowsItsOwnEnd) {
  const struct {
    bool ends;
    std::string head, body;
  } rows[] = {
      {true, "HTTP/1.0 200\r\ncontent-length:3 ", "abc"},
      {true, "HTTP/1.1 500 No\nContent-Length: 0", ""},
      {true, "HTTP/1.1 204 No Content", ""},
      {true, "HTTP/1.1 304 Not Modified\r\nContent-Length: 99", ""},
      {true, "HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 200 OK\r\nContent-Length: 1", "x"},
      {true, "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked",
       "3\r\nabc\r\n0A;ext=1\r\n0123456789\r\n0\r\n\r\n"},
      {true, "HTTP/1.1 200 OK\r\nTRANSFER-ENCODING: Chunked", "0\r\nTrailer: x\r\n\r\n"},
      {true, "HTTP/1.1 200 OK\r\nX: " + std::string(1000, 'x') + "\r\nContent-Length: 1", "x"},
      {true, "HTTP/1.1 200 OK\r\nContent-Length: 3\r\nContent-Length: 3", "abc"},
      {false, "HTTP/1.1 200 OK", "abc"},
      {false, "HTTP/1.1 200 OK\r\nX-Content-Length: 1\r\nContent-Lengthy: 1", "abc"},
      {false, "HTTP/1.1 200 OK\r\nContent-Length: 2\r\nContent-Length: 3", "abcd"},
      {false, "HTTP/1.1 200 OK\r\nContent-Length: -1", "abc"},
      {false, "HTTP/1.1 200 OK\r\nContent-Length: 2x", "abc"},
      {false, "HTTP/1.1 200 OK\r\nContent-Length: 99999999999999999999", "abc"},
      {false, "HTTP/1.1 200 OK\r\nTransfer-Encoding: gzip, chunked", "0\r\n\r\n"},
      {false, "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked", "zz\r\nabc\r\n0\r\n\r\n"},
      {false, "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked", "1\r\nabc\r\n0\r\n\r\n"},
      {false, "SSH-2.0-x\r\nContent-Length: 3", "abc"},
  };
  for (const auto& [ends, head, body] : rows) {
    const std::string whole = head + "\r\n\r\n" + body;
    HttpResponse atOnce;
    EXPECT_EQ(ends, atOnce.receive(whole.data(), whole.size())) << whole;
    HttpResponse byteByByte;
    std::size_t count = 0;
    while (count < whole.size() && !byteByByte.receive(&whole[count++], 1)) {
    }
    EXPECT_EQ(whole.size(), count) << whole;
    EXPECT_EQ(ends, byteByByte.receive("", 0)) << whole;
  }
}
