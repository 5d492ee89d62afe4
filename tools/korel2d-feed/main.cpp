// korel2d-feed: a second process that feeds a running view. It writes a sine, a ramp and a count
// of its writes at a steady rate into a shared memory segment that names them in a KSHM
// directory, and sends the same three values in datagrams; examples/feed.k2d shows them.
#include "Datagram.h"
#include "KshmSegment.h"

#include <time.h>

#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

// Exit statuses.
constexpr int kDone = 0;
constexpr int kFailed = 1; // no segment or no socket
constexpr int kBadArguments = 2;

constexpr double kMaxRate = 10000;
constexpr double kMaxSeconds = 1e7;
constexpr double kPi = 3.14159265358979323846;

struct Options {
    key_t key = 0x4b324446;
    int port = 47020;
    bool shm = true;
    bool udp = true;
    std::string host = "127.0.0.1";
    double rate = 100;
    bool big = true;
    double seconds = 0; // 0: until a signal
    bool help = false;
};

const char* const kUsage =
    "usage: korel2d-feed [--shm KEY] [--udp PORT] [--no-shm] [--no-udp] [--host HOST]\n"
    "                    [--rate HZ] [--big | --little] [--seconds N]\n";

const char* const kHelp =
    "Writes SINE (float, sin(2 pi 0.25 t)), RAMP (float, the fraction of t/4) and COUNTER\n"
    "(int32, the writes from 1) at a steady rate into a shared memory segment that it\n"
    "creates with a KSHM directory naming them (values at offsets 120, 184, 248), and sends\n"
    "them in datagrams of 12 bytes (offsets 0, 4, 8). The segment is removed at the end.\n"
    "  --shm KEY     segment key in hexadecimal, not 0 (default 0x4b324446)\n"
    "  --udp PORT    UDP port in 1..65535 (default 47020)\n"
    "  --no-shm      no segment\n"
    "  --no-udp      no datagrams\n"
    "  --host HOST   where the datagrams go, a name or an address (default 127.0.0.1)\n"
    "  --rate HZ     writes per second, above 0 and at most 10000 (default 100)\n"
    "  --big         values most significant byte first (the default)\n"
    "  --little      values least significant byte first; the directory stays in host order\n"
    "  --seconds N   stop after N seconds, above 0 (default: until SIGINT or SIGTERM)\n"
    "  -h, --help    print this help and quit\n"
    "Exit status: 0 done; 1 the segment or the socket could not be had; 2 bad arguments.\n";

bool parseNumber(const char* text, double above, double atMost, double* value)
{
    char* end = nullptr;
    double v = std::strtod(text, &end);
    if (end == text || *end != '\0' || !(v > above && v <= atMost))
        return false;
    *value = v;
    return true;
}

// Empty when the arguments make sense; otherwise what is wrong, naming the argument.
std::string parseArguments(int argc, char** argv, Options* o)
{
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "-h" || arg == "--help") {
            o->help = true;
            return "";
        }
        if (arg == "--no-shm" || arg == "--no-udp") {
            (arg == "--no-shm" ? o->shm : o->udp) = false;
        } else if (arg == "--big" || arg == "--little") {
            o->big = arg == "--big";
        } else if (arg == "--shm" || arg == "--udp" || arg == "--host" || arg == "--rate" || arg == "--seconds") {
            const std::string rule = arg == "--shm"    ? "KEY must be a hexadecimal number in 1..ffffffff"
                                     : arg == "--udp"  ? "PORT must be a whole number in 1..65535"
                                     : arg == "--host" ? "HOST must be a name or an address"
                                     : arg == "--rate" ? "HZ must be a number above 0 and at most 10000"
                                                       : "N must be a number above 0";
            if (i + 1 >= argc)
                return arg + " needs a value: " + rule;
            const char* value = argv[++i];
            char* end = nullptr;
            bool good = *value != '\0' && *value != '-';
            if (arg == "--shm") {
                const unsigned long key = std::strtoul(value, &end, 16);
                good = good && *end == '\0' && key > 0 && key <= 0xffffffffu;
                o->key = key_t(uint32_t(key));
            } else if (arg == "--udp") {
                const long port = std::strtol(value, &end, 10);
                good = good && *end == '\0' && port >= 1 && port <= 65535;
                o->port = int(port);
            } else if (arg == "--host") {
                o->host = value;
            } else {
                good = good && (arg == "--rate" ? parseNumber(value, 0, kMaxRate, &o->rate)
                                                : parseNumber(value, 0, kMaxSeconds, &o->seconds));
            }
            if (!good)
                return arg + " " + value + ": " + rule;
        } else {
            return "unknown option " + arg;
        }
    }
    if (!o->shm && !o->udp)
        return "--no-shm and --no-udp leave nothing to feed";
    return "";
}

volatile std::sig_atomic_t stopRequested = 0;

void requestStop(int)
{
    stopRequested = 1;
}

timespec addSeconds(timespec t, double seconds)
{
    const double whole = std::floor(seconds);
    t.tv_sec += time_t(whole);
    t.tv_nsec += long((seconds - whole) * 1e9);
    if (t.tv_nsec >= 1000000000L) {
        t.tv_sec += 1;
        t.tv_nsec -= 1000000000L;
    }
    return t;
}

double secondsBetween(const timespec& from, const timespec& to)
{
    return double(to.tv_sec - from.tv_sec) + double(to.tv_nsec - from.tv_nsec) * 1e-9;
}

// The values at the time t since the start, for the n-th write.
struct Values {
    float sine, ramp;
    int32_t counter;
};

Values valuesAt(double t, int32_t n)
{
    return {float(std::sin(2 * kPi * 0.25 * t)), float(t / 4 - std::floor(t / 4)), n};
}

} // namespace

int main(int argc, char** argv)
{
    Options o;
    const std::string wrong = parseArguments(argc, argv, &o);
    if (!wrong.empty()) {
        std::fprintf(stderr, "korel2d-feed: %s\n%s", wrong.c_str(), kUsage);
        return kBadArguments;
    }
    if (o.help) {
        std::printf("%s%s", kUsage, kHelp);
        return kDone;
    }

    // Set before the segment exists, so that no signal ends the process with the segment left
    // behind: the handler only raises the flag, the loop ends and the segment is removed on the
    // way out. A reader of the report that went away mustn't end it either.
    struct sigaction stop = {};
    stop.sa_handler = requestStop;
    sigaction(SIGINT, &stop, nullptr);
    sigaction(SIGTERM, &stop, nullptr);
    std::signal(SIGPIPE, SIG_IGN);

    using korelgen::KshmEntry;
    using korelgen::KshmSegment;
    const std::vector<KshmEntry> directory = {
        {"SINE", korelgen::kKshmFloat}, {"RAMP", korelgen::kKshmFloat}, {"COUNTER", korelgen::kKshmInt32}};
    std::unique_ptr<KshmSegment> segment;
    if (o.shm) {
        segment = std::make_unique<KshmSegment>(o.key, (directory.size() + 1) * korelgen::kKshmEntrySize);
        if (!segment->ok()) {
            // With IPC_CREAT, EINVAL means a segment of the key exists and is smaller.
            std::fprintf(stderr, "korel2d-feed: cannot create the shared memory segment 0x%x: %s%s\n",
                         unsigned(o.key), std::strerror(errno),
                         errno == EINVAL ? " (a smaller one of that key exists: ipcrm -M KEY)" : "");
            return kFailed;
        }
        segment->writeDirectory(directory);
    }
    std::unique_ptr<korelgen::UdpSender> sender;
    if (o.udp) {
        sender = std::make_unique<korelgen::UdpSender>(o.port, o.host);
        if (!sender->ok()) {
            std::fprintf(stderr, "korel2d-feed: cannot open a UDP socket to %s port %d\n", o.host.c_str(), o.port);
            return kFailed;
        }
    }

    std::printf("korel2d-feed: SINE, RAMP, COUNTER %s-endian at %g Hz", o.big ? "big" : "little", o.rate);
    if (segment)
        std::printf(", segment 0x%x", unsigned(o.key));
    if (sender)
        std::printf(", datagrams to %s port %d", o.host.c_str(), o.port);
    std::printf("\n");
    std::fflush(stdout);

    timespec start;
    clock_gettime(CLOCK_MONOTONIC, &start);
    const timespec end = addSeconds(start, o.seconds);
    long long writes = 0;
    while (!stopRequested) {
        timespec now;
        clock_gettime(CLOCK_MONOTONIC, &now);
        if (o.seconds > 0 && secondsBetween(now, end) <= 0)
            break;
        const Values v = valuesAt(secondsBetween(start, now), int32_t(++writes));
        uint8_t datagram[12];
        const void* fields[] = {&v.sine, &v.ramp, &v.counter};
        for (size_t i = 0; i < 3; ++i) {
            if (segment)
                segment->put(KshmSegment::valueOffset(int(i)), fields[i], 4, o.big);
            korelgen::storeOrdered(datagram + 4 * i, fields[i], 4, o.big);
        }
        // A datagram lost is a datagram late: the next one carries the newer values.
        if (sender)
            sender->send(datagram, sizeof datagram);
        // The writes keep to the start's clock, so that they don't drift; a signal cuts the wait short.
        timespec next = addSeconds(start, double(writes) / o.rate);
        if (o.seconds > 0 && secondsBetween(end, next) > 0)
            next = end;
        clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &next, nullptr);
    }
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    std::printf("korel2d-feed: %lld write%s in %.1f s\n", writes, writes == 1 ? "" : "s", secondsBetween(start, now));
    return kDone;
}
