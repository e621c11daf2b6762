// Whole frames through DrawScene: the sphere grid with the depth buffer
// (W1), the painter path (W4), textured (W5), translucent (W6), and how the
// cost grows with pixels and with triangles.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <vector>

#include "bench_host.h"
#include "sphere_scene.h"
#include "thread_clock.h"

namespace {

// Frame time, submitted triangles per second, the engine's allocations per
// frame after the first (warm-up) frame, and the hash of the first frame.
void DrawFrames(benchmark::State& state, const SphereGridOptions& options) {
  SphereGrid grid(options);
  grid.DrawFrame();
  if (grid.CoveredPixels() == 0) {
    state.SkipWithError("nothing drawn");
    return;
  }
  state.counters["hash"] = double(grid.Hash());
  const uint64_t allocationsBefore = benchhost::Allocations();
  for (auto _ : state) grid.DrawFrame();
  const double frames = double(state.iterations());
  state.SetItemsProcessed(state.iterations() * grid.Triangles());
  state.counters["allocs/frame"] = double(benchhost::Allocations() - allocationsBefore) / frames;
  state.counters["tris"] = double(grid.Triangles());
}

void W1Spheres(benchmark::State& state) { DrawFrames(state, {}); }
void W4Painter(benchmark::State& state) { DrawFrames(state, {.depthBuffer = false}); }
void W5Textured(benchmark::State& state) { DrawFrames(state, {.textured = true}); }
void W6Alpha(benchmark::State& state) { DrawFrames(state, {.translucent = true}); }

void ScalePixels(benchmark::State& state) {
  DrawFrames(state, {.width = int(state.range(0)), .height = int(state.range(1))});
}
void ScaleSpheres(benchmark::State& state) { DrawFrames(state, {.grid = int(state.range(0))}); }
// 22 x 22 spheres: 1.07 million triangles a frame, at 1920 x 1080.
void MillionTriangles(benchmark::State& state) {
  DrawFrames(state, {.width = 1920, .height = 1080, .grid = 22});
}

// W1 for 10,000 frames with the spheres turning: the median processor time
// per frame of each thousand frames (medians, so that a burst of load from
// elsewhere does not count), the last thousand's over the first's, the
// slowest thousand's, and every allocation after the first frame.
void W1TenThousandFrames(benchmark::State& state) {
  constexpr int kFrames = 10000, kBlock = 1000;
  SphereGrid grid({});
  grid.DrawFrame();
  const uint64_t allocationsBefore = benchhost::Allocations();
  const uint64_t liveBefore = benchhost::LiveBlocks();
  std::vector<double> medians;
  for (auto _ : state) {
    std::vector<double> block(kBlock);
    for (int frame = 0; frame < kFrames; ++frame) {
      const double start = ThreadSeconds();
      grid.Turn(float(frame % 360));
      grid.DrawFrame();
      block[size_t(frame % kBlock)] = (ThreadSeconds() - start) * 1e3;
      if (frame % kBlock == kBlock - 1) {
        std::nth_element(block.begin(), block.begin() + kBlock / 2, block.end());
        medians.push_back(block[kBlock / 2]);
      }
    }
  }
  state.counters["first1k_ms"] = medians.front();
  state.counters["last1k_ms"] = medians.back();
  state.counters["last/first"] = medians.back() / medians.front();
  state.counters["slowest1k_ms"] = *std::max_element(medians.begin(), medians.end());
  state.counters["allocs"] = double(benchhost::Allocations() - allocationsBefore);
  state.counters["live_growth"] = double(benchhost::LiveBlocks()) - double(liveBefore);
}

}  // namespace

BENCHMARK(W1Spheres)->Unit(benchmark::kMillisecond);
BENCHMARK(W4Painter)->Unit(benchmark::kMillisecond);
BENCHMARK(W5Textured)->Unit(benchmark::kMillisecond);
BENCHMARK(W6Alpha)->Unit(benchmark::kMillisecond);
BENCHMARK(ScalePixels)
    ->Args({320, 240})
    ->Args({640, 480})
    ->Args({1280, 960})
    ->Args({1920, 1080})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(ScaleSpheres)->Arg(2)->Arg(4)->Arg(8)->Arg(16)->Unit(benchmark::kMillisecond);
BENCHMARK(MillionTriangles)->Unit(benchmark::kMillisecond);
BENCHMARK(W1TenThousandFrames)->Iterations(1)->Repetitions(1)->Unit(benchmark::kSecond);
