// The drawers on their own: full-target fill against plain stores (W2),
// many small triangles (W3), and the full-screen effects.
#include <benchmark/benchmark.h>
#include <immintrin.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>

#include "target.h"
#include "thread_clock.h"

namespace {

// The scalar loop the fill was first measured against: plain 16-bit stores.
__attribute__((noinline)) void PlainFill(uint16_t* pixels, int width, int height, uint16_t color) {
  for (int y = 0; y < height; ++y) {
    uint16_t* row = pixels + size_t(y) * width;
    for (int x = 0; x < width; ++x) row[x] = color;
  }
}

// The machine's limit: the best of the C library's memset (a colour of two
// equal bytes) and 32-byte AVX2 stores over the same rows.
__attribute__((noinline)) void MemsetFill(uint16_t* pixels, int width, int height, uint16_t) {
  for (int y = 0; y < height; ++y) std::memset(pixels + size_t(y) * width, 0x7F, size_t(width) * 2);
}

__attribute__((noinline, target("avx2"))) void Avx2Fill(uint16_t* pixels, int width, int height,
                                                        uint16_t color) {
  const __m256i c = _mm256_set1_epi16(static_cast<int16_t>(color));
  for (int y = 0; y < height; ++y) {
    uint16_t* row = pixels + size_t(y) * width;
    int x = 0;
    for (; x + 16 <= width; x += 16) _mm256_storeu_si256(reinterpret_cast<__m256i*>(row + x), c);
    for (; x < width; ++x) row[x] = color;
  }
}

// Two triangles cover the target, 200 times a frame; each iteration times
// the drawer and the plain stores back to back, so their ratio is measured
// under the same load.
void W2Fill(benchmark::State& state) {
  constexpr int kPasses = 200;
  Target target(int(state.range(0)), int(state.range(1)), false);
  const float w = float(target.width()), h = float(target.height());
  MeshVertex corners[4] = {ScreenVertex(0, 0), ScreenVertex(w, 0), ScreenVertex(w, h), ScreenVertex(0, h)};
  MeshPolygon faces[2] = {MakeFace(target.material(), 0x7FFF, 2, 1, 0),
                          MakeFace(target.material(), 0x7FFF, 3, 2, 0)};
  for (MeshPolygon& face : faces) FlatSolidTriangle(&face, corners);
  const int64_t pixels = int64_t(target.width()) * target.height();
  if (target.CountPixels(0x7FFF) != pixels) {
    state.SkipWithError("the two triangles do not cover the target");
    return;
  }
  using Fill = void (*)(uint16_t*, int, int, uint16_t);
  const bool avx2 = __builtin_cpu_supports("avx2");
  const Fill references[3] = {PlainFill, MemsetFill, avx2 ? Avx2Fill : MemsetFill};
  double drawer = 0, spent[3] = {0, 0, 0};
  for (auto _ : state) {
    const double t0 = ThreadSeconds();
    for (int i = 0; i < kPasses; ++i)
      for (MeshPolygon& face : faces) FlatSolidTriangle(&face, corners);
    benchmark::ClobberMemory();
    const double t1 = ThreadSeconds();
    drawer += t1 - t0;
    for (int k = 0; k < 3; ++k) {
      const double start = ThreadSeconds();
      for (int i = 0; i < kPasses; ++i)
        references[k](target.pixels(), target.width(), target.height(), 0x7F7F);
      benchmark::ClobberMemory();
      spent[k] += ThreadSeconds() - start;
    }
    state.SetIterationTime(t1 - t0);
  }
  const double filled = double(pixels) * kPasses * double(state.iterations());
  const double best = std::min(spent[1], spent[2]);
  state.counters["drawer_Gpix/s"] = filled / drawer * 1e-9;
  state.counters["limit_Gpix/s"] = filled / best * 1e-9;
  state.counters["drawer/limit"] = best / drawer;
  state.counters["drawer/scalar"] = spent[0] / drawer;
}

// 100,000 flat triangles of 8 to 12 pixels from a fixed seed, each through
// DrawTriangle2D.
void W3Small(benchmark::State& state) {
  constexpr int kTriangles = 100000;
  Target target(640, 480, false);
  TriangleSet set = SmallTriangles(target, kTriangles, 12345);
  std::vector<MeshVertex>& vertices = set.vertices;
  std::vector<MeshPolygon>& faces = set.faces;
  for (MeshPolygon& face : faces) DrawTriangle2D(&face, vertices.data(), target.viewport());
  if (target.CountPixels(0) > int64_t(target.width()) * target.height() / 2) {
    state.SkipWithError("the small triangles draw too little");
    return;
  }
  state.counters["hash"] = double(target.Hash());
  for (auto _ : state)
    for (MeshPolygon& face : faces) DrawTriangle2D(&face, vertices.data(), target.viewport());
  state.SetItemsProcessed(state.iterations() * kTriangles);
}

void Blur(benchmark::State& state, void (*blur)(uint16_t*, int32_t, int32_t)) {
  const int w = int(state.range(0)), h = int(state.range(1));
  std::vector<uint16_t> pixels(size_t(w) * h);
  std::mt19937 random(7);
  for (uint16_t& p : pixels) p = uint16_t(random() & 0x7FFF);
  for (auto _ : state) {
    blur(pixels.data(), w, h);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * w * h);
}
void FSBlurBench(benchmark::State& state) { Blur(state, FSBlur); }
void FSBlurFastBench(benchmark::State& state) { Blur(state, FSBlurFast); }

void ClearDepth(benchmark::State& state) {
  Target target(int(state.range(0)), int(state.range(1)), true);
  for (auto _ : state) {
    ClearViewportDepthBuffer(target.viewport(), 0xFFFFFFFFu);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * target.width() * target.height());
}

}  // namespace

BENCHMARK(W2Fill)->Args({640, 480})->Args({1920, 1080})->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(W3Small)->Unit(benchmark::kMillisecond);
BENCHMARK(FSBlurBench)->Name("FSBlur")->Args({640, 480})->Args({1920, 1080})->Unit(benchmark::kMicrosecond);
BENCHMARK(FSBlurFastBench)
    ->Name("FSBlurFast")
    ->Args({640, 480})
    ->Args({1920, 1080})
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(ClearDepth)
    ->Name("ClearViewportDepthBuffer")
    ->Args({640, 480})
    ->Args({1920, 1080})
    ->Unit(benchmark::kMicrosecond);
