// MarkupDoc against pugixml's default parse on the same generated documents, the
// index's size per element, and FindChildElement over wide sibling lists. The
// closing summary prints the ratios; on a shared machine run it with
// --benchmark_repetitions=5 and the summary compares medians.
#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <new>
#include <random>
#include <string>

#include "worksets/markup_doc.h"

#if __has_include(<pugixml.hpp>)
#include <pugixml.hpp>
#define TAVLET_HAVE_PUGIXML 1
#endif

// Allocation counting, for the claim that a find allocates nothing.
namespace {
std::atomic<long> allocations{0};
}  // namespace

void* operator new(std::size_t size) {
  allocations.fetch_add(1, std::memory_order_relaxed);
  if (void* p = std::malloc(size ? size : 1)) return p;
  throw std::bad_alloc();
}
// Through a pointer, so that g++ doesn't pair this free with the operator new above.
static void (*volatile release)(void*) = std::free;
void operator delete(void* p) noexcept { release(p); }
void operator delete(void* p, std::size_t) noexcept { release(p); }

namespace {

using tavlet::MarkupDoc;

// Wide groups of records, deep chains, attributes in both quotes, text with
// entities and code-page 936, CDATA sections and comments.
std::string MakeDocument(std::size_t target) {
  std::mt19937 rng(20240601);
  std::string out = "<?xml version=\"1.0\" encoding=\"GB2312\"?>\r\n<!-- generated test data -->\r\n<root version=\"2\">\r\n";
  int id = 0;
  while (out.size() < target) {
    out += "  <group name=\"组 " + std::to_string(id) + "\" kind='wide'>\r\n";
    const int width = 20 + static_cast<int>(rng() % 60);
    for (int i = 0; i < width; ++i, ++id) {
      switch (rng() % 6) {
        case 0:
          out += "    <item id=\"" + std::to_string(id) + "\" name='图纸 " + std::to_string(id) +
                 "' state=\"open\">文字 &amp; text &lt;" + std::to_string(id) + "&gt;</item>\r\n";
          break;
        case 1:
          out += "    <data id=\"" + std::to_string(id) + "\"><![CDATA[<raw value=\"" + std::to_string(id) +
                 "\"> & more ]]></data>\r\n";
          break;
        case 2:
          out += "    <!-- comment " + std::to_string(id) + " with 'quotes' -->\r\n    <flag on=\"1\"/>\r\n";
          break;
        case 3: {
          const int depth = 4 + static_cast<int>(rng() % 8);
          out += "    ";
          for (int d = 0; d < depth; ++d) out += "<level d=\"" + std::to_string(d) + "\">";
          out += "leaf " + std::to_string(id);
          for (int d = 0; d < depth; ++d) out += "</level>";
          out += "\r\n";
          break;
        }
        default:
          out += "    <entry key=\"k" + std::to_string(id) + "\" value=\"v" + std::to_string(rng() % 1000) +
                 "\" path=\"D:\\项目\\" + std::to_string(id) + ".dwg\"/>\r\n";
          break;
      }
    }
    out += "  </group>\r\n";
  }
  out += "</root>\r\n";
  return out;
}

const std::string& Document(std::size_t megabytes) {
  static std::map<std::size_t, std::string> cache;
  auto it = cache.find(megabytes);
  if (it == cache.end()) it = cache.emplace(megabytes, MakeDocument(megabytes << 20)).first;
  return it->second;
}

std::size_t CountElements(const std::string& text) {
  MarkupDoc doc;
  doc.SetDoc(text);
  return doc.RecordsUsed() - 1;
}

void BM_MarkupDocParse(benchmark::State& state) {
  const std::string& text = Document(static_cast<std::size_t>(state.range(0)));
  MarkupDoc doc;
  for (auto _ : state) {
    const bool ok = doc.SetDoc(text);
    benchmark::DoNotOptimize(ok);
    if (!ok) state.SkipWithError(doc.GetError().c_str());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
  const std::size_t elements = doc.RecordsUsed() - 1;
  state.counters["elements"] = static_cast<double>(elements);
  state.counters["index_bytes_per_element"] = static_cast<double>(doc.IndexBytes()) / static_cast<double>(elements);
}
BENCHMARK(BM_MarkupDocParse)->Arg(1)->Arg(20)->Unit(benchmark::kMillisecond);

#ifdef TAVLET_HAVE_PUGIXML
void BM_PugixmlParse(benchmark::State& state) {
  const std::string& text = Document(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    pugi::xml_document doc;
    const pugi::xml_parse_result result = doc.load_buffer(text.data(), text.size());
    benchmark::DoNotOptimize(result.status);
    if (!result) state.SkipWithError(result.description());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}
BENCHMARK(BM_PugixmlParse)->Arg(1)->Arg(20)->Unit(benchmark::kMillisecond);
#endif

std::string Siblings(std::int64_t count) {
  std::string text = "<list>\r\n";
  for (std::int64_t i = 0; i < count; ++i) text += "  <entry n=\"" + std::to_string(i) + "\"/>\r\n";
  return text + "  <last/>\r\n</list>\r\n";
}

// One find that passes every sibling before it hits the last one.
void BM_FindChildElementLast(benchmark::State& state) {
  MarkupDoc doc;
  doc.SetDoc(Siblings(state.range(0)));
  long allocated = 0;
  for (auto _ : state) {
    doc.ResetPos();
    const long before = allocations.load(std::memory_order_relaxed);
    const bool found = doc.FindChildElement("last");
    allocated += allocations.load(std::memory_order_relaxed) - before;
    benchmark::DoNotOptimize(found);
  }
  state.counters["allocations_per_find"] = static_cast<double>(allocated) / static_cast<double>(state.iterations());
  state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_FindChildElementLast)->RangeMultiplier(10)->Range(1000, 100000)->Complexity(benchmark::oN);

// A loop of finds that visits every sibling once.
void BM_FindChildElementLoop(benchmark::State& state) {
  MarkupDoc doc;
  doc.SetDoc(Siblings(state.range(0)));
  long allocated = 0;
  for (auto _ : state) {
    doc.ResetPos();
    const long before = allocations.load(std::memory_order_relaxed);
    long visited = 0;
    while (doc.FindChildElement("entry")) ++visited;
    allocated += allocations.load(std::memory_order_relaxed) - before;
    benchmark::DoNotOptimize(visited);
  }
  state.counters["allocations"] = static_cast<double>(allocated) / static_cast<double>(state.iterations());
  state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_FindChildElementLoop)->RangeMultiplier(10)->Range(1000, 100000)->Complexity(benchmark::oN);

// Keeps each benchmark's real and CPU time per iteration, for the ratios printed at
// the end: the median when the run has repetitions (on a shared machine the single
// runs scatter), else the one run.
class RecordingReporter : public benchmark::ConsoleReporter {
 public:
  struct Times {
    double real = 0;
    double cpu = 0;
    bool median = false;
  };
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      const bool median = run.run_type == Run::RT_Aggregate && run.aggregate_name == "median";
      if (!median && !(run.run_type == Run::RT_Iteration && run.iterations > 0)) continue;
      Times& times = seconds[run.run_name.str()];
      if (times.median && !median) continue;
      const double multiplier = benchmark::GetTimeUnitMultiplier(run.time_unit);
      times = Times{run.GetAdjustedRealTime() / multiplier, run.GetAdjustedCPUTime() / multiplier, median};
    }
    ConsoleReporter::ReportRuns(runs);
  }
  std::map<std::string, Times> seconds;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  RecordingReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  std::printf("\nSummary\n");
  for (int megabytes : {1, 20}) {
    std::string suffix = std::to_string(megabytes);
    suffix.insert(suffix.begin(), '/');
    const auto mine = reporter.seconds.find("BM_MarkupDocParse" + suffix);
    const auto theirs = reporter.seconds.find("BM_PugixmlParse" + suffix);
    if (mine == reporter.seconds.end()) continue;
    const std::string& text = Document(static_cast<std::size_t>(megabytes));
    MarkupDoc doc;
    doc.SetDoc(text);
    const double elements = static_cast<double>(CountElements(text));
    std::printf("%2d MB (%zu bytes, %.0f elements): MarkupDoc %.3f ms (%.0f MB/s)", megabytes, text.size(), elements,
                mine->second.real * 1e3, static_cast<double>(text.size()) / mine->second.real / 1e6);
    if (theirs != reporter.seconds.end()) {
      std::printf(", pugixml %.3f ms; pugixml/MarkupDoc time ratio %.2f (CPU time %.2f)", theirs->second.real * 1e3,
                  theirs->second.real / mine->second.real, theirs->second.cpu / mine->second.cpu);
    }
    std::printf("; index %.1f bytes per element%s\n", static_cast<double>(doc.IndexBytes()) / elements,
                mine->second.median ? " (medians)" : "");
  }
  const auto small = reporter.seconds.find("BM_FindChildElementLast/1000");
  const auto large = reporter.seconds.find("BM_FindChildElementLast/100000");
  if (small != reporter.seconds.end() && large != reporter.seconds.end()) {
    std::printf("FindChildElement past 100,000 siblings: %.3f ms, %.1f times 1,000 siblings (linear: 100)\n",
                large->second.real * 1e3, large->second.real / small->second.real);
  }
  benchmark::Shutdown();
  return 0;
}
