// UDP datagrams: the last one of a cycle lies over the ones before in the source's buffer, values
// are read at offsets in the peer's byte order, and no peer can make the view fail or wait.
#include "Datagram.h"
#include "LoadedView.h"
#include "actions/actions.h"
#include "dataViews.h"

#include <gtest/gtest.h>

#include <fcntl.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

using namespace k2dtest;
using namespace korelgen;

namespace {

enum Endian { kBig, kLittle };

SourceFields udpSource(int port, const std::string& size, std::vector<VariableFields> variables, Endian endian = kBig)
{
    return SourceFields{KRD_TYPE_UDP, {{0, std::to_string(port)}, {0, size}, {endian, ""}}, 1, std::move(variables)};
}

VariableFields at(const std::string& name, int type, const std::string& offset)
{
    return VariableFields{type, name, "", {{0, offset}}};
}

// Runs data cycles until the variable reads `value`, or ten seconds pass.
bool arrives(VIEW_STRUCT* view, const std::string& name, const std::string& value)
{
    return waitFor([&] { return fillDP(view->dataTypes) == 0 && read(view, name) == value; });
}

int openDescriptors()
{
    return int(std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}));
}

// Two datagrams in one cycle: the second's bytes over the first's; one longer than SIZE is cut.
TEST(UdpSource, TheLastDatagramLiesOverTheBuffer)
{
    const int port = freeUdpPort();
    LoadedView loaded(viewWith({udpSource(port, "16", {at("f", KR_VAR_FLOAT, "0"), at("i", KR_VAR_INT32, "4"),
                                                      at("tail", KR_VAR_INT32, "12"), at("last", KR_VAR_INT8, "15")})}));
    VIEW_STRUCT* view = loaded.view;
    ASSERT_EQ(krViewStart(view), 0);
    UdpSender peer(port);
    ASSERT_TRUE(peer.ok());
    EXPECT_EQ(read(view, "f") + read(view, "i"), "0.0000000");
    std::vector<uint8_t> first(16, 0x01), second = {0x3F, 0x80, 0x00, 0x00};
    ASSERT_TRUE(peer.send(first.data(), first.size()) && peer.send(second.data(), second.size()));
    ASSERT_TRUE(arrives(view, "f", "1.000000"));
    EXPECT_EQ(read(view, "i"), "16843009");
    std::vector<uint8_t> longer(20, 0x02);
    ASSERT_TRUE(peer.send(longer.data(), longer.size()));
    EXPECT_TRUE(arrives(view, "tail", "33686018"));
    EXPECT_EQ(read(view, "last"), "2");
    krViewStop(view);
}

// Sizes no number, below 0 or beyond the largest datagram; offsets outside the buffer; datagrams
// of every length from empty to the largest: lines in the log, no crash, values where they fit.
TEST(UdpSource, HostileSizesOffsetsAndDatagrams)
{
    const int port = freeUdpPort(), otherPort = freeUdpPort();
    setLogLevel(2);
    takeLog();
    LoadedView loaded(viewWith(
        {udpSource(port, "99999999999", {at("first", KR_VAR_INT16, "0"), at("end", KR_VAR_UINT8, "65535"),
                                         at("past", KR_VAR_INT8, "65536"), at("negative", KR_VAR_FLOAT, "-1"),
                                         at("far", KR_VAR_DOUBLE, "2147483647"), at("text", KR_VAR_TEXT, "65502")},
                   kLittle),
         udpSource(otherPort, "-5", {at("none", KR_VAR_INT8, "0")}), udpSource(otherPort + 1, "x", {})}));
    VIEW_STRUCT* view = loaded.view;
    ASSERT_EQ(krViewStart(view), 0);
    UdpSender peer(port), other(otherPort);
    std::vector<uint8_t> largest(65507, 'a');
    largest[0] = 7;
    for (size_t size : {size_t(0), size_t(1), size_t(4096), largest.size()})
        ASSERT_TRUE(peer.send(largest.data(), size)) << size;
    ASSERT_TRUE(other.send(largest.data(), 8));
    EXPECT_TRUE(arrives(view, "text", "aaaaa"));
    EXPECT_EQ(read(view, "first") + " " + read(view, "end") + " " + read(view, "none"), "24839 0 0");
    krViewStop(view);
    const std::string log = takeLog();
    for (const char* line : {"SIZE \"99999999999\" taken as 65536", "SIZE \"-5\" taken as 0", "SIZE \"x\" taken as 0",
                             "past at offset 65536", "negative at offset -1", "far at offset 2147483647"})
        EXPECT_NE(log.find(line), std::string::npos) << line << " not in\n" << log;
}

// A port held by a socket that doesn't share it: the source stays silent and says why. With
// standard input closed a socket may get descriptor 0; every round closes what it opened, and
// datagrams still arrive afterwards.
TEST(UdpSource, SocketsOpenAndCloseCleanly)
{
    const int port = freeUdpPort();
    const int holder = socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(uint16_t(port));
    ASSERT_EQ(bind(holder, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    LoadedView held(viewWith({udpSource(port, "8", {at("v", KR_VAR_INT8, "0")})}));
    testing::internal::CaptureStderr();
    ASSERT_EQ(krViewStart(held.view), 0);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("bind socket: "), std::string::npos);
    UdpSender toHolder(port);
    const uint8_t seven = 7;
    toHolder.send(&seven, 1);
    fillDP(held.view->dataTypes);
    EXPECT_EQ(read(held.view, "v"), "0");
    krViewStop(held.view);
    close(holder);

    LoadedView loaded(viewWith({udpSource(port, "8", {at("v", KR_VAR_INT8, "0")})}));
    UdpSender peer(port);
    const int savedInput = dup(0);
    close(0);
    const int before = openDescriptors();
    for (int round = 0; round < 100; ++round) {
        ASSERT_EQ(krViewStart(loaded.view), 0);
        ASSERT_EQ(krViewStop(loaded.view), 0);
    }
    const int after = openDescriptors();
    ASSERT_EQ(krViewStart(loaded.view), 0);
    const uint8_t value = 9;
    ASSERT_TRUE(peer.send(&value, 1));
    EXPECT_TRUE(arrives(loaded.view, "v", "9"));
    krViewStop(loaded.view);
    dup2(savedInput, 0);
    close(savedInput);
    EXPECT_EQ(after, before);
}

// A peer sending as fast as it can for two seconds: the data thread goes on cycling, a bounded
// number of datagrams per cycle, and the view stops at once.
TEST(UdpSource, AFloodingPeerHoldsNothingUp)
{
    const int port = freeUdpPort();
    LoadedView loaded(
        viewWith({udpSource(port, "4", {at("v", KR_VAR_INT32, "0")}),
                  SourceFields{KRD_TYPE_CALCULATOR, {}, 2, {VariableFields{KR_VAR_INT32, "cycles", "", {{0, "cycles + 1"}, {0, ""}}}}}}));
    VIEW_STRUCT* view = loaded.view;
    ASSERT_EQ(krViewStartAnim(view), 0);
    std::atomic<bool> flooding{true};
    std::thread peer([&] {
        UdpSender sender(port);
        for (int32_t n = 0; flooding; ++n)
            sender.send(&n, sizeof n);
    });
    std::this_thread::sleep_for(std::chrono::seconds(1));
    // The cycles go on while the datagrams keep coming.
    const double early = number(view, "cycles");
    EXPECT_TRUE(waitFor([&] { return number(view, "cycles") > early + 20; }));
    std::this_thread::sleep_for(std::chrono::seconds(1));
    const auto stopping = std::chrono::steady_clock::now();
    EXPECT_EQ(krViewStop(view), 0);
    const double stopSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - stopping).count();
    flooding = false;
    peer.join();
    EXPECT_LT(stopSeconds, 0.6);
}

} // namespace
