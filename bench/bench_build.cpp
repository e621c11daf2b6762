// Work outside the frame: the radix sorter against std::stable_sort, mesh
// validation, vertex normals and the primitive generators.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "engine3d.h"
#include "thread_clock.h"

namespace {

std::vector<float> RandomKeys(size_t count) {
  std::mt19937 random(99);
  std::uniform_real_distribution<float> value(-1000.0f, 1000.0f);
  std::vector<float> keys(count);
  for (float& k : keys) k = value(random);
  return keys;
}

// Each iteration sorts the same 1,000,000 random keys from the identity order
// with RadixFloatSorter, then with std::stable_sort of an index list by key and
// of a copy of the keys themselves; the ratios compare the three in one run.
void RadixVsStableSort(benchmark::State& state) {
  const int32_t n = int32_t(state.range(0));
  InitEngine3D();
  const size_t count = static_cast<size_t>(n);
  const std::vector<float> keys = RandomKeys(count);
  std::vector<uint32_t> radix(count), indexes(count);
  std::vector<float> copy(count);
  double radixTime = 0, indexTime = 0, keyTime = 0;
  for (auto _ : state) {
    ResetRadixSort(n, radix.data());
    for (int32_t i = 0; i < n; ++i) indexes[size_t(i)] = uint32_t(i);
    copy = keys;
    const double t0 = ThreadSeconds();
    RadixFloatSorter(n, keys.data(), radix.data());
    const double t1 = ThreadSeconds();
    std::stable_sort(indexes.begin(), indexes.end(), [&keys](uint32_t a, uint32_t b) { return keys[a] < keys[b]; });
    const double t2 = ThreadSeconds();
    std::stable_sort(copy.begin(), copy.end());
    const double t3 = ThreadSeconds();
    radixTime += t1 - t0;
    indexTime += t2 - t1;
    keyTime += t3 - t2;
    state.SetIterationTime(t1 - t0);
  }
  // Equal negative keys come out reversed: compare the keys, not the indexes.
  for (size_t i = 0; i < count; ++i)
    if (keys[radix[i]] != keys[indexes[i]]) {
      state.SkipWithError("the radix order differs from std::stable_sort's");
      break;
    }
  state.counters["stable_index/radix"] = indexTime / radixTime;
  state.counters["stable_keys/radix"] = keyTime / radixTime;
  state.SetItemsProcessed(state.iterations() * n);
  ReleaseEngine3D();
}

// A list already in key order costs one pass over the keys.
void RadixSortedEarlyOut(benchmark::State& state) {
  const int32_t n = int32_t(state.range(0));
  InitEngine3D();
  const size_t count = static_cast<size_t>(n);
  const std::vector<float> keys = RandomKeys(count);
  std::vector<uint32_t> list(count);
  ResetRadixSort(n, list.data());
  RadixFloatSorter(n, keys.data(), list.data());
  for (auto _ : state) {
    RadixFloatSorter(n, keys.data(), list.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * n);
  ReleaseEngine3D();
}

// A one-block grid mesh of about `triangles` triangles, vertices on a wavy
// sheet so that every normal differs.
Mesh* SheetMesh(int triangles) {
  const int side = int(std::sqrt(triangles / 2.0)) + 1;
  Mesh* mesh = CreateMesh(side * side, 2 * (side - 1) * (side - 1), 0x808080);
  for (int y = 0; y < side; ++y)
    for (int x = 0; x < side; ++x)
      SetMeshVertex(mesh, y * side + x, float(x), float(y), std::sin(float(x) * 0.3f) * std::cos(float(y) * 0.2f));
  int slot = 0;
  for (int y = 0; y + 1 < side; ++y)
    for (int x = 0; x + 1 < side; ++x, slot += 2) {
      const int v = y * side + x;
      SetMeshQuadPolygon(mesh, slot, v, v + 1, v + side + 1, v + side, 0, 1);
    }
  return mesh;
}

// Validation of a finished 100,000-triangle mesh: polygon checks, vertex
// normals and the bounding box.
void ValidateOneBlock(benchmark::State& state) {
  InitEngine3D();
  Mesh* mesh = SheetMesh(int(state.range(0)));
  for (auto _ : state) mesh = ValidateMesh(mesh);
  state.SetItemsProcessed(state.iterations() * state.range(0));
  DeleteMesh(mesh);
  ReleaseEngine3D();
}

// Piece by piece: every AddMeshVertex and AddMeshTriPolygon reallocates its
// array one element larger, so building costs grow with the square of the
// size; timed with the ValidateMesh that compacts the result.
void PieceBuiltAndValidate(benchmark::State& state) {
  InitEngine3D();
  const int side = int(state.range(0));
  for (auto _ : state) {
    Mesh* mesh = CreateMesh(0, 0, 0x808080);
    for (int y = 0; y < side; ++y)
      for (int x = 0; x < side; ++x) AddMeshVertex(mesh, float(x), float(y), float((x ^ y) & 3));
    for (int y = 0; y + 1 < side; ++y)
      for (int x = 0; x + 1 < side; ++x) {
        const int v = y * side + x;
        AddMeshTriPolygon(mesh, v, v + 1, v + side + 1, 0, 1);
        AddMeshTriPolygon(mesh, v, v + side + 1, v + side, 0, 1);
      }
    mesh = ValidateMesh(mesh);
    DeleteMesh(mesh);
  }
  state.SetItemsProcessed(state.iterations() * 2 * (side - 1) * (side - 1));
  ReleaseEngine3D();
}

void VertexNormals(benchmark::State& state) {
  InitEngine3D();
  Mesh* mesh = ValidateMesh(SheetMesh(int(state.range(0))));
  for (auto _ : state) CalcMeshVerticesNormal(mesh);
  state.SetItemsProcessed(state.iterations() * state.range(0));
  DeleteMesh(mesh);
  ReleaseEngine3D();
}

// Each generator at a large segment count, created and deleted.
template <class Make>
void Generate(benchmark::State& state, Make make) {
  InitEngine3D();
  for (auto _ : state) {
    Mesh* mesh = make();
    if (mesh == nullptr) {
      state.SkipWithError("refused");
      break;
    }
    DeleteMesh(mesh);
  }
  ReleaseEngine3D();
}

}  // namespace

BENCHMARK(RadixVsStableSort)->Arg(1000000)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(RadixSortedEarlyOut)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(ValidateOneBlock)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(PieceBuiltAndValidate)->Arg(32)->Arg(64)->Unit(benchmark::kMillisecond);
BENCHMARK(VertexNormals)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Generate, Sphere256x512, [] { return SphereCreate(1, nullptr, 256, 512, 0xFFFFFF); })
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Generate, Hemisphere256x512, [] { return HemisphereCreate(1, nullptr, 256, 512, 0xFFFFFF, 0); })
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Generate, ChCube64, [] { return ChCubeCreate(2, 0.5f, nullptr, 64, 0xFFFFFF); })
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Generate, Grid512x512, [] { return GridCreate(10, nullptr, 512, 512, 0xFFFFFF); })
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Generate, Cylinder4096, [] { return CylinderCreate(1, 0.5f, 2, nullptr, 4096, 0xFFFFFF); })
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Generate, Tube4096, [] { return TubeCreate(1, 0.5f, 2, nullptr, 4096, 0xFFFFFF); })
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Generate, Torus256x512, [] { return TorusCreate(1, 0.3f, nullptr, 256, 512, 0xFFFFFF); })
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Generate, Disk4096, [] { return DiskCreate(1, nullptr, 4096, 0xFFFFFF); })
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Generate, Ring4096, [] { return RingCreate(1, 0.5f, nullptr, 4096, 0xFFFFFF); })
    ->Unit(benchmark::kMillisecond);
