// A tiny HTTP/1.0 server on 127.0.0.1 for the download tests. It runs on its own
// thread and answers each request by path: a registered body with 200, a redirect,
// a stall (headers promising a body that never comes), or 404.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <map>
#include <string>
#include <thread>
#include <vector>

namespace imageio_test {

class LocalHttpServer {
 public:
  LocalHttpServer() {
    listener_ = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ::bind(listener_, reinterpret_cast<sockaddr*>(&address), sizeof address);
    ::listen(listener_, 8);
    socklen_t length = sizeof address;
    ::getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length);
    port_ = ntohs(address.sin_port);
  }
  ~LocalHttpServer() {
    stop_ = true;
    if (thread_.joinable()) thread_.join();
    ::close(listener_);
  }

  void Serve(const std::string& path, const std::vector<std::uint8_t>& body) {
    answers_[path] = "HTTP/1.0 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" +
                     std::string(body.begin(), body.end());
  }
  void Redirect(const std::string& path, const std::string& target) {
    answers_[path] = "HTTP/1.0 302 Found\r\nLocation: " + target + "\r\nContent-Length: 0\r\n\r\n";
  }
  void Stall(const std::string& path) { answers_[path] = kStall; }
  void Start() {
    thread_ = std::thread([this] {
      while (WaitReadable(listener_)) {
        const int client = ::accept(listener_, nullptr, nullptr);
        if (client < 0) continue;
        Answer(client);
        ::close(client);
      }
    });
  }

  std::string Url(const std::string& path) const {
    return "http://127.0.0.1:" + std::to_string(port_) + path;
  }

 private:
  static constexpr const char* kStall = "HTTP/1.0 200 OK\r\nContent-Length: 30\r\n\r\nxx";

  bool WaitReadable(int fd) {
    while (!stop_) {
      pollfd p{fd, POLLIN, 0};
      if (::poll(&p, 1, 50) > 0) return true;
    }
    return false;
  }

  void Answer(int client) {
    std::string request;
    char buffer[1024];
    while (request.find("\r\n\r\n") == std::string::npos && WaitReadable(client)) {
      const ssize_t n = ::recv(client, buffer, sizeof buffer, 0);
      if (n <= 0) return;
      request.append(buffer, static_cast<std::size_t>(n));
    }
    const std::size_t start = request.find(' ') + 1;
    const auto found = answers_.find(request.substr(start, request.find(' ', start) - start));
    Send(client,
         found != answers_.end() ? found->second : "HTTP/1.0 404 Not Found\r\nContent-Length: 0\r\n\r\n");
    if (found != answers_.end() && found->second == kStall) {
      while (!stop_ && ::recv(client, buffer, sizeof buffer, MSG_DONTWAIT) != 0) ::usleep(20000);
    }
  }

  static void Send(int client, const std::string& data) {
    for (std::size_t sent = 0; sent < data.size();) {
      const ssize_t n = ::send(client, data.data() + sent, data.size() - sent, MSG_NOSIGNAL);
      if (n <= 0) return;
      sent += static_cast<std::size_t>(n);
    }
  }

  int listener_ = -1;
  int port_ = 0;
  std::atomic<bool> stop_{false};
  std::thread thread_;
  std::map<std::string, std::string> answers_;
};

}  // namespace imageio_test
