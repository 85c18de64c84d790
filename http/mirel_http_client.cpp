#include "http/mirel_http_client.h"

#include <unistd.h>

#include <utility>

#include "common/mirel_common_builder.h"
#include "common/mirel_common_console.h"

namespace {

constexpr unsigned long kNameSize = 255;

mirel_string localName() {
  char name[kNameSize + 1] = {};
  gethostname(name, kNameSize);
  return name;
}

}  // namespace

HttpClient::HttpClient(mirel_string host, unsigned long port)
    : m_host(std::move(host)), m_localName(localName()), m_port(port) {}

mirel_string HttpClient::get(const mirel_string& path) {
  mirel_string_builder request;
  request.append("GET ");
  request.append(path);
  request.append(" HTTP/1.1\r\nHost: ");
  request.append(m_localName);
  request.append("\r\n\r\n");
  mirel_string response = exchange(request.take(), mirel_string::within("", 0));
  // Not found plus 4 is position 3.
  const unsigned long body = response.find("\r\n\r\n", 0) + 4;
  return std::move(response).substr(body, mirel_string::npos);
}

mirel_string HttpClient::post(const mirel_string& path, const mirel_string& body) {
  mirel_string_builder request;
  request.append("POST ");
  request.append(path);
  request.append(" HTTP/1.1\r\nHost: ");
  request.append(m_localName);
  request.append("\r\nContent-Length: ");
  request.append(mirel_string(body.length()));
  request.append("\r\n\r\n");
  return exchange(request.take(), body);
}

mirel_string HttpClient::exchange(const mirel_string& head, const mirel_string& body) {
  if (head.lost() || m_host.lost() || !m_socket.open(m_host, m_port)) {
    return "";
  }
  // Also when the request did not go out whole: the server may have said why.
  m_socket.send(head, body);
  mirel_string response = m_socket.recv();
  m_socket.close();
  hideWork();
  return response;
}
