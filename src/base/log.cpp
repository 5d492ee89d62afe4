// The library's one log: messages filtered by level, printed on standard output and kept
// in a memory buffer that a host fetches to show what the library said.

#include "base/base.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace {

constexpr int kMessageSize = 1024;
constexpr int kLogSize = 16384;

std::atomic<int> logLevel{1};

// The memory log takes no lock: the data thread and the host's thread may both write.
// Each writer reserves its range by moving `logLength` with a compare-and-swap before it
// copies, so every write stays inside the buffer; a fetch racing a write may see part of
// a message, which is acceptable for a diagnostic.
char memoryLog[kLogSize];
std::atomic<int> logLength{0};

void keep(const char* text, int length)
{
    int at = logLength.load(std::memory_order_relaxed);
    do {
        // A message that doesn't fit whole is left out; shorter ones later may still fit.
        if (length > kLogSize - 1 - at)
            return;
    } while (!logLength.compare_exchange_weak(at, at + length, std::memory_order_relaxed));
    memcpy(memoryLog + at, text, length);
}

void vlog(int level, const char* format, va_list args)
{
    if (level > logLevel.load(std::memory_order_relaxed))
        return;
    char text[kMessageSize];
    vsnprintf(text, sizeof text, format, args);
    fputs(text, stdout);
    fflush(stdout);
    keep(text, static_cast<int>(strlen(text)));
}

} // namespace

extern "C" {

int logMsg(int level, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    vlog(level, format, args);
    va_end(args);
    return 0;
}

// Data sources log through this; their messages are progress reports.
int logMsgData(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    vlog(3, format, args);
    va_end(args);
    return 0;
}

int setLogLevel(int level)
{
    logLevel.store(level, std::memory_order_relaxed);
    return 0;
}

int getLogMsg(char* destination, int n)
{
    int length = logLength.exchange(0);
    if (destination && n > 0) {
        int copied = std::min(length, n - 1);
        memcpy(destination, memoryLog, copied);
        destination[copied] = '\0';
    }
    return 0;
}

// Digits behind the decimal point that a label needs for a step of this size.
int getDots(double value)
{
    if (value == 0.0)
        return 3;
    float l = static_cast<float>(log10(fabs(value)));
    if (!(l <= 0.0f)) // NaN falls here too: no decimals rather than an undefined cast
        return 0;
    return static_cast<int>(fabsf(l) + 1.0f);
}

// Digits before the decimal point for a range from a to b.
int getPre(double a, double b)
{
    double larger = fabs(b) > fabs(a) ? b : a;
    float l = static_cast<float>(log10(fabs(larger)));
    if (!(l >= 1.0f))
        return 1;
    // log10 of a finite double stays below 309; an infinite bound gets the same cap.
    return static_cast<int>(std::min(l, 309.0f) + 1.0f);
}

} // extern "C"
