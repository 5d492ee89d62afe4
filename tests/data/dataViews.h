// Views holding only data sources, and what a host reads from them by name, shared by the
// tests of sources and run modes.
#pragma once

#include "Korel2D.h"
#include "ViewFixture.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

namespace k2dtest {

inline korelgen::ViewBuilder viewWith(const std::vector<korelgen::SourceFields>& sources)
{
    return blackPage().dataSection(sources);
}

// What krVarGetStr prints, or its result code in angle brackets where that isn't 0.
inline std::string read(VIEW_STRUCT* view, const std::string& name)
{
    char text[256] = "unchanged";
    int result = krVarGetStr(view, name.c_str(), text);
    return result == 0 ? std::string(text) : "<" + std::to_string(result) + ">";
}

// The same as a number; NaN where it can't be read.
inline double number(VIEW_STRUCT* view, const std::string& name)
{
    const std::string text = read(view, name);
    return text[0] == '<' ? std::nan("") : strtod(text.c_str(), nullptr);
}

// Polls another thread's progress; false if `done` didn't come within ten seconds.
template <class Done> bool waitFor(Done done)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!done() && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return done();
}

// A UDP port on the loopback that nothing holds now, for a test's own source.
inline int freeUdpPort()
{
    const int probe = socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    const bool found = bind(probe, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
                       getsockname(probe, reinterpret_cast<sockaddr*>(&address), &length) == 0;
    close(probe);
    return found ? ntohs(address.sin_port) : -1;
}

} // namespace k2dtest
