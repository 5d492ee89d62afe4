// Sends datagrams to a UDP port, as the socket source of a view receives them: for the feeder
// tool, the tests and the benchmarks.
#pragma once

#include <netinet/in.h>

#include <cstddef>
#include <string>

namespace korelgen {

class UdpSender {
public:
    // A socket for datagrams to `port` of `host`, a name or a dotted address. ok() tells whether
    // both the socket and the address could be had.
    explicit UdpSender(int port, const std::string& host = "127.0.0.1");
    ~UdpSender();
    UdpSender(const UdpSender&) = delete;
    UdpSender& operator=(const UdpSender&) = delete;

    bool ok() const { return socket_ >= 0; }
    // One datagram of `size` bytes; false unless all of it went out.
    bool send(const void* data, size_t size);

private:
    int socket_ = -1;
    sockaddr_in to_{};
};

} // namespace korelgen
