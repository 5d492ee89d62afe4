#include "benchCommon.h"

#include "Korel2D.h"

#include <cstdio>
#include <unistd.h>

namespace korelbench {

ViewFile::ViewFile(std::vector<uint8_t> content) : bytes(std::move(content))
{
    char name[] = "/tmp/korel2d-benchXXXXXX.k";
    int fd = mkstemps(name, 2);
    if (fd >= 0 && write(fd, bytes.data(), bytes.size()) == ssize_t(bytes.size()))
        path = name;
    if (fd >= 0)
        close(fd);
}

ViewFile::~ViewFile()
{
    if (!path.empty())
        unlink(path.c_str());
}

void readFileReference(benchmark::State& state, const ViewFile* file)
{
    std::vector<uint8_t> buffer(file->bytes.size());
    for (auto _ : state) {
        FILE* stream = fopen(file->path.c_str(), "rb");
        size_t got = stream ? fread(buffer.data(), 1, buffer.size(), stream) : 0;
        if (stream)
            fclose(stream);
        if (got != buffer.size()) {
            state.SkipWithError("cannot read the view file");
            break;
        }
        benchmark::DoNotOptimize(buffer.data());
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(buffer.size()));
}

void loadView(benchmark::State& state, const ViewFile* file, const char* reference)
{
    for (auto _ : state) {
        VIEW_STRUCT* view = krViewLoad(file->path.c_str());
        if (!view) {
            state.SkipWithError("krViewLoad failed");
            break;
        }
        // Only the load is measured; giving the view back is the host's later business.
        state.PauseTiming();
        krViewFree(view);
        state.ResumeTiming();
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(file->bytes.size()));
    state.counters["file_bytes"] = double(file->bytes.size());
    state.SetLabel(std::string("reference ") + reference);
}

void SummaryReporter::ReportRuns(const std::vector<Run>& runs)
{
    for (const Run& run : runs)
        if (!run.error_occurred && (run.run_type == Run::RT_Iteration || run.aggregate_name == "median"))
            seconds[run.run_name.function_name] =
                run.GetAdjustedRealTime() / benchmark::GetTimeUnitMultiplier(run.time_unit);
    ConsoleReporter::ReportRuns(runs);
}

} // namespace korelbench
