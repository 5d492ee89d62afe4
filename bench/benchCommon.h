// Pieces every benchmark program shares: a fixed random generator, a generated view as a file
// on disk, the read-only reference under any load, and a reporter that keeps the times for the
// summary each program prints after its run.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace korelbench {

// A generator of our own, so that every run and every standard library makes the same view.
class Lcg {
public:
    explicit Lcg(uint32_t seed = 20240601u) : state_(seed) {}
    int below(int n) { return int(next() % uint32_t(n)); }
    float unit() { return float(next() & 0xFFFF) / 65535.0f; }

private:
    uint32_t next()
    {
        state_ = state_ * 1664525u + 1013904223u;
        return state_ >> 8;
    }
    uint32_t state_;
};

// The view as a host finds it: a file in /tmp, removed with this object. `path` stays empty
// when the file could not be written.
class ViewFile {
public:
    explicit ViewFile(std::vector<uint8_t> content);
    ~ViewFile();
    ViewFile(const ViewFile&) = delete;
    ViewFile& operator=(const ViewFile&) = delete;

    const std::vector<uint8_t> bytes;
    std::string path;
};

// Reading the file's bytes: the floor under any load of it.
void readFileReference(benchmark::State& state, const ViewFile* file);
// krViewLoad and krViewFree of the file; `reference` names the benchmark it is held against.
void loadView(benchmark::State& state, const ViewFile* file, const char* reference);

// Keeps each benchmark's real seconds per iteration, the median where runs are repeated.
class SummaryReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override;
    std::map<std::string, double> seconds;
};

} // namespace korelbench
