// batch and merge.

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "base/messages.h"
#include "cli/batch.h"
#include "cli/command_list.h"
#include "cli/common.h"
#include "fileio/files.h"
#include "fileio/regionparams.h"

namespace molvera::cli {

namespace {

// The bytes of the region parameters of --model: a .rpa file, or a project's --region N.
int ReadModel(const Args& args, Session& s, std::string& model) {
    const std::string path = args.Value("model").value_or("");
    if (!std::filesystem::is_regular_file(path)) return Fail("cannot open " + path);
    if (!args.Has("region")) {
        if (Status st = ReadFileBytes(path, kMaxImportBytes, msg::kErrorReadingFile, model); !st)
            return Refused(st);
        return 0;
    }
    auto region = RegionArg(args);
    if (!region) return Fail("--region takes a region number 1..10");
    if (Status st = LoadInput(s, path); !st) return Refused(st);
    s.project.CurrentRegion = static_cast<Int16>(*region);
    if (!IsSet(s.project.Current().HasData) || !IsSet(s.project.Current().HasBackground))
        return Fail("region " + std::to_string(*region + 1) + " has no data or no background");
    model = RegionParameterBytes(s.project);
    return 0;
}

// "I/N" with 0 <= I < N as {I, N}.
bool ShardArg(const std::string& text, int& shard, int& count) {
    int used = 0;
    return std::sscanf(text.c_str(), "%d/%d%n", &shard, &count, &used) == 2 &&
           used == static_cast<int>(text.size()) && count > 0 && shard >= 0 && shard < count;
}

}  // namespace

int RunBatch(const Args& args) {
    const std::vector<std::string>& files = args.Positional();
    if (files.empty())
        return Fail("no spectrum files given\nusage: " + std::string(Usage("batch")));
    if (!args.Has("model"))
        return Fail("no model given (--model FILE.rpa | PROJECT.xps --region N)");
    if (!args.Has("o")) return Fail("no output file given (-o RESULTS.csv)");
    const ImportFormat* format = nullptr;
    if (auto name = args.Value("format"); name && !(format = FindImportFormat(*name)))
        return Fail("unknown format '" + *name + "'");
    const int cores = static_cast<int>(std::max(1u, std::thread::hardware_concurrency()));
    const std::optional<int> jobs = args.Has("jobs") ? IntArg(args, "jobs", 1, 256) : cores;
    if (!jobs) return Fail("--jobs takes a number 1..256");
    int shard = 0;
    int shards = 1;
    if (auto text = args.Value("shard"); text && !ShardArg(*text, shard, shards))
        return Fail("--shard takes I/N with 0 <= I < N");
    Session s;
    if (Status st = LoadOptions(args, s); !st) return Refused(st);
    std::string model;
    if (int rc = ReadModel(args, s, model); rc != 0) return rc;

    const std::vector<SeriesSpectrum> series = ReadSeries(files, format);
    std::vector<int> indices;
    for (int i = shard; i < static_cast<int>(series.size()); i += shards) indices.push_back(i);
    // "spectrum 12 of 500" on stderr when it is a terminal, a few times a second.
    const auto start = std::chrono::steady_clock::now();
    double shown = -1;
    auto progress = [&](std::size_t done) {
        const double t =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        if (t - shown < 0.2 && done < indices.size()) return;
        shown = t;
        std::fprintf(stderr, "\rspectrum %zu of %zu   ", done, indices.size());
        std::fflush(stderr);
    };
    const bool terminal = isatty(STDERR_FILENO) != 0;
    const std::string rows =
        FitSeriesRows(series, indices, model, s.project.Options, *jobs,
                      terminal ? progress : std::function<void(std::size_t)>());
    if (terminal && shown >= 0) std::fprintf(stderr, "\n");
    if (Status st = WriteFileBytes(*args.Value("o"), BatchHeader() + rows, msg::kErrorSavingFile);
        !st)
        return Refused(st);
    if (auto prefix = args.Value("plots")) {
#ifdef MOLVERA_CLI_RENDER
        if (!WriteSeriesPlots(BatchHeader() + rows, *prefix)) Print(msg::kErrorSavingFile);
#else
        Warn("this build draws no pictures: --plots " + *prefix + " ignored");
#endif
    }
    if (gInterrupted.load()) std::fprintf(stderr, "stopped: the finished rows are kept\n");
    return 0;
}

int RunMerge(const Args& args) {
    const std::size_t count = args.Positional().size();
    if (count == 0) return Fail("no results files given\nusage: " + std::string(Usage("merge")));
    if (!args.Has("o")) return Fail("no output file given (-o ALL.csv)");
    std::vector<std::string> contents(count);
    for (std::size_t k = 0; k < count; ++k)
        if (!ReadWholeFile(args.Positional()[k], contents[k], kMaxImportBytes * 16))
            return Fail("cannot open " + args.Positional()[k]);
    std::string merged;
    if (Status st = MergeResults(contents, merged); !st) return Refused(st);
    if (Status st = WriteFileBytes(*args.Value("o"), merged, msg::kErrorSavingFile); !st)
        return Refused(st);
    return 0;
}

}  // namespace molvera::cli
