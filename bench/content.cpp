// The content walks on a large simulated drawing: CollectReferences over
// 100,000 entities in 10 layouts (model space and 9 paper-space layouts) with
// 1,000 hyperlinks, 200 images, 20 references and 20 OLE links; the view and
// layer-state lists on 1,000 of each. Every call goes through the simulated
// host, its fault bookkeeping included (each call counted and logged by name),
// so the figures are an upper bound of the bar's own cost.
#include <benchmark/benchmark.h>

#include <string>

#include "content/layouts.h"
#include "content/references.h"
#include "content/views.h"
#include "sim/memory_file_system.h"
#include "sim/sim_host.h"

namespace {

using namespace tavlet;

constexpr int kEntities = 100000;
constexpr int kPaperLayouts = 9;
constexpr int kHyperlinks = 1000;
constexpr int kImages = 200;

// Built by appending: g++ 12 warns falsely (-Wrestrict) on literal + string.
std::string Numbered(const char* prefix, int n, const char* suffix = "") {
  std::string s = prefix;
  s += std::to_string(n);
  s += suffix;
  return s;
}

sim::DrawingDescription LargeDrawing() {
  sim::DrawingDescription d;
  for (int i = 0; i < kPaperLayouts; ++i) d.layouts.push_back(Numbered("Layout", i + 1));
  for (int i = 0; i < 20; ++i)
    d.xrefs.push_back({Numbered("X", i), Numbered("C:\\x\\ref", i, ".dwg"), i % 4 != 0});
  d.entities.resize(kEntities);
  for (int i = 0; i < kEntities; ++i) {
    sim::EntityDesc& e = d.entities[static_cast<std::size_t>(i)];
    int layout = i % (kPaperLayouts + 1);
    e.layout = layout == 0 ? "Model" : d.layouts[static_cast<std::size_t>(layout - 1)];
    if (i % (kEntities / kImages) == 1) {
      e.kind = sim::EntityDesc::Kind::Image;
      e.path = Numbered("C:\\images\\photo", i, ".jpg");
    } else if (i % (kEntities / 20) == 2) {
      e.kind = sim::EntityDesc::Kind::Ole;
      e.linked = true;
      e.path = Numbered("C:\\tables\\t", i, ".xls");
    }
    if (i % (kEntities / kHyperlinks) == 3)
      e.hyperlinks.push_back(Numbered("http://example.com/item/", i));
  }
  for (int i = 0; i < 50; ++i) d.blocks.push_back({Numbered("Block", i), {}});
  d.hasPicture = true;
  d.picture.width = d.picture.height = 1;
  return d;
}

sim::DrawingDescription ManyViewsAndStates() {
  sim::DrawingDescription d;
  d.layouts = {"A1", "A2"};
  d.regApps = {"MRVN_TAVLET"};
  for (int i = 0; i < 1000; ++i) {
    sim::NamedViewDesc v;
    v.name = Numbered("View ", (i * 7919) % 1000);
    v.paperSpace = i % 2 == 1;
    if (i % 4 == 1) v.xdata = {{1001, "MRVN_TAVLET"}, {1000, "A1"}};
    d.views.push_back(v);
    d.layerStates.push_back(Numbered("State ", i));
  }
  d.hasPicture = true;
  d.picture.width = d.picture.height = 1;
  return d;
}

struct Opened {
  explicit Opened(sim::DrawingDescription content) : host(files) {
    doc = host.OpenDescription("tavlet-drawing 1\npicture 1 1 background 0\n", "big.tdd");
    host.Find(doc)->content = std::move(content);
    host.Documents()->DatabaseOf(doc, &db);
  }
  MemoryFileSystem files;
  sim::SimHost host;
  port::Document doc = nullptr;
  port::Database db = nullptr;
};

void BM_CollectReferences(benchmark::State& state) {
  Opened o(LargeDrawing());
  content::ReferenceSet sets;
  for (auto _ : state) {
    int id = 5000;
    content::CollectReferences(id, sets, *o.host.Databases(), o.db, true, o.files);
    benchmark::DoNotOptimize(id);
    state.PauseTiming();
    o.host.Faults().ClearLog();
    state.ResumeTiming();
  }
  state.counters["xrefs"] = static_cast<double>(sets.externalReferences.size());
  state.counters["images"] = static_cast<double>(sets.images.size());
  state.counters["oleLinks"] = static_cast<double>(sets.oleLinks.size());
  state.counters["hyperlinks"] = static_cast<double>(sets.hyperlinks.size());
}
BENCHMARK(BM_CollectReferences)->Unit(benchmark::kMillisecond);

void BM_CollectViews(benchmark::State& state) {
  Opened o(ManyViewsAndStates());
  content::IdMap<content::ViewEntry> views;
  for (auto _ : state) {
    int id = 0;
    content::CollectViews(id, views, *o.host.Databases(), o.db, true);
    benchmark::DoNotOptimize(id);
    state.PauseTiming();
    o.host.Faults().ClearLog();
    state.ResumeTiming();
  }
  state.counters["views"] = static_cast<double>(views.size());
}
BENCHMARK(BM_CollectViews)->Unit(benchmark::kMillisecond);

void BM_CollectLayerStates(benchmark::State& state) {
  Opened o(ManyViewsAndStates());
  content::IdMap<std::string> states;
  for (auto _ : state) {
    int id = 0;
    content::CollectLayerStates(id, states, *o.host.Databases(), o.db, true);
    benchmark::DoNotOptimize(id);
    state.PauseTiming();
    o.host.Faults().ClearLog();
    state.ResumeTiming();
  }
  state.counters["states"] = static_cast<double>(states.size());
}
BENCHMARK(BM_CollectLayerStates)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
