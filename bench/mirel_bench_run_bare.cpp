/// What a run does with a template that holds no commands, with a JSON library known for its speed and bare
/// socket loops. Argument: the port of the server.

#include <arpa/inet.h>
#include <rapidjson/document.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "bench/mirel_bench_sockets.h"

namespace {

std::string answer(const sockaddr_in& server, std::string_view head, std::string_view body) {
  const int peer = connected(reinterpret_cast<const sockaddr*>(&server));
  sendAll(peer, head);
  sendAll(peer, body);
  std::string text;
  receiveAll(peer, [&text](const char* piece, unsigned long length) { text.append(piece, length); });
  return text;
}

void run(const sockaddr_in& server) {
  const std::string config = answer(server, "GET /config HTTP/1.1\r\nHost: h\r\n\r\n", "");
  rapidjson::Document document;
  document.Parse(config.c_str() + config.find("\r\n\r\n") + 4);
  rapidjson::StringBuffer text;
  rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(text);
  writer.SetIndent(' ', 2);
  document.Accept(writer);
  const std::string head =
      "POST /tarn HTTP/1.1\r\nHost: h\r\nContent-Length: " + std::to_string(text.GetSize());
  std::puts(answer(server, head + "\r\n\r\n", {text.GetString(), text.GetSize()}).c_str());
}

}  // namespace

int main(int count, char** arguments) {
  sockaddr_in server = {};
  server.sin_family = AF_INET;
  server.sin_port = htons(static_cast<unsigned short>(std::atoi(arguments[count - 1])));
  server.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  run(server);
  return 0;
}
