#include "Datagram.h"

#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>

namespace korelgen {

UdpSender::UdpSender(int port, const std::string& host)
{
    addrinfo hints{};
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_DGRAM;
    addrinfo* found = nullptr;
    if (port < 0 || port > 65535 || getaddrinfo(host.c_str(), nullptr, &hints, &found) != 0 || !found)
        return;
    to_ = *reinterpret_cast<const sockaddr_in*>(found->ai_addr);
    to_.sin_port = htons(uint16_t(port));
    freeaddrinfo(found);
    socket_ = ::socket(AF_INET, SOCK_DGRAM, 0);
}

UdpSender::~UdpSender()
{
    if (socket_ >= 0)
        close(socket_);
}

bool UdpSender::send(const void* data, size_t size)
{
    // Unconnected, so that a refusal from a port nobody listens on yet doesn't fail the sends
    // after it.
    return socket_ >= 0 &&
           sendto(socket_, data, size, 0, reinterpret_cast<const sockaddr*>(&to_), sizeof to_) == ssize_t(size);
}

} // namespace korelgen
