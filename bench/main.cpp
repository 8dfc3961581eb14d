// The benchmark program: every case is one Google Benchmark whose counters are the nanoseconds per
// call of our routine and of each peer. scripts/bench.sh runs it and report.py makes the tables.
//
//   --level=N    measure level N in place of the highest that the processor runs
//   --levels     measure every level against the others, without peers
//   --budget=MS  time for one case
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "core/cpu.h"
#include "measure.h"
#include "registry.h"

namespace zov::bench {

namespace {

struct Options {
  int level = zovDispatchIndex;
  bool levels = false;
  double budget = 120;
};

// Takes our own options out of the arguments.
Options ParseOptions(int& argc, char** argv) {
  Options options;
  const int highest = zovDispatchIndex;
  int kept = 1;
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    if (argument.starts_with("--level=")) {
      options.level = std::atoi(argument.c_str() + std::strlen("--level="));
    } else if (argument == "--levels") {
      options.levels = true;
    } else if (argument.starts_with("--budget=")) {
      options.budget = std::atof(argument.c_str() + std::strlen("--budget="));
    } else {
      argv[kept++] = argv[i];
    }
  }
  argc = kept;
  if (options.level < 0 || options.level > highest) {
    std::fprintf(stderr, "this processor runs levels 0 to %d\n", highest);
    std::exit(2);
  }
  return options;
}

// The contestants of a contest between levels: ours at each of them.
std::vector<Contestant> Levels(const Contest& contest) {
  // Numbered, as counters come out in the order of their names.
  static constexpr const char* kNames[kLevelCount] = {
      "0 sse2", "1 sse3", "2 ssse3", "3 ssse3_movbe", "4 sse4", "5 avx", "6 avx2"};
  const Contestant& ours = contest.contestants().front();
  std::vector<Contestant> result;
  for (int level = 0; level <= contest.level(); ++level) {
    result.push_back({kNames[level], Role::ours, [run = ours.run, level](std::int64_t calls) {
                        zovDispatchIndex = level;
                        run(calls);
                      }});
  }
  return result;
}

void Run(benchmark::State& state, const Case& benchmarkCase, const Options& options) {
  zovDispatchIndex = options.level;
  Contest contest(options.level, !options.levels);
  benchmarkCase.setUp(contest);
  const std::vector<Contestant> contestants =
      options.levels ? Levels(contest) : contest.contestants();
  for ([[maybe_unused]] auto _ : state) {
    const std::vector<double> nanoseconds = MeasureInTurns(contestants, options.budget);
    state.SetIterationTime(nanoseconds.front() * 1e-9);
    static constexpr const char* kRoles[] = {"ours", "peer", "unheld"};
    for (std::size_t i = 0; i < contestants.size(); ++i) {
      const char* const role = options.levels ? "level" : kRoles[int(contestants[i].role)];
      state.counters[std::string(role) + ":" + contestants[i].name] = nanoseconds[i];
    }
  }
  state.counters["work"] = benchmarkCase.work;
  state.SetLabel(benchmarkCase.unit);
}

// Shows the case being measured; the tables are made from the output file.
class Progress : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }
  void ReportRuns(const std::vector<benchmark::BenchmarkReporter::Run>& runs) override {
    for (const auto& run : runs) {
      if (terminal_) std::fprintf(stderr, "\r\033[K%s", run.run_name.function_name.c_str());
    }
  }
  void Finalize() override {
    if (terminal_) std::fprintf(stderr, "\r\033[K");
  }

 private:
  const bool terminal_ = isatty(STDERR_FILENO) != 0;
};

}  // namespace

}  // namespace zov::bench

int main(int argc, char** argv) {
  using namespace zov::bench;
  const Options options = ParseOptions(argc, argv);
  Cases cases;
  AddEntryCases(cases);
  AddMemoryCases(cases);
  AddArithmeticCases(cases);
  AddSearchCases(cases);
  AddResizeCases(cases);
  AddResizeAreaCases(cases);
  AddFftCases(cases);
  AddConversionCases(cases);
  AddStatisticsCases(cases);
  AddFirCases(cases);
  AddIntegerCases(cases);
  AddMathCases(cases);
  for (const Case& each : cases) {
    const std::string name = each.family + "/" + each.operation + "/" + each.size;
    benchmark::RegisterBenchmark(
        name.c_str(), [&each, &options](benchmark::State& state) { Run(state, each, options); })
        ->Iterations(1)
        ->UseManualTime();
  }
  benchmark::AddCustomContext("level", std::to_string(options.level));
  benchmark::AddCustomContext("peers", KELOZOV_PEERS_FOUND);
  benchmark::AddCustomContext("peers_missing", KELOZOV_PEERS_MISSING);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  Progress progress;
  benchmark::RunSpecifiedBenchmarks(&progress);
  return 0;
}
