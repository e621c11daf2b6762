// W1 (the sphere grid through the depth buffer) and W3 (100,000 small
// triangles) timed without Google Benchmark, so that one program builds
// for every platform, the browser's WebAssembly among them: wall time, best
// of five runs, and the hash of each picture.
#include <stdio.h>

#include <chrono>

#include "sphere_scene.h"
#include "target.h"

namespace {

double Now() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

template <class Work>
double Best(int runs, Work work) {
  double best = 1e30;
  for (int r = 0; r < runs; ++r) {
    const double start = Now();
    work();
    const double took = Now() - start;
    best = took < best ? took : best;
  }
  return best;
}

}  // namespace

int main() {
  constexpr int kFrames = 50, kTriangles = 100000;
  double w1 = 0, w3 = 0;
  uint32_t hash1 = 0, hash3 = 0;
  {
    SphereGrid grid({});
    grid.DrawFrame();
    hash1 = grid.Hash();
    w1 = Best(5, [&] {
      for (int f = 0; f < kFrames; ++f) grid.DrawFrame();
    });
  }
  {
    Target target(640, 480, false);
    TriangleSet set = SmallTriangles(target, kTriangles, 12345);
    const auto draw = [&] {
      for (MeshPolygon& face : set.faces) DrawTriangle2D(&face, set.vertices.data(), target.viewport());
    };
    draw();
    hash3 = target.Hash();
    w3 = Best(5, draw);
  }
  printf("W1 spheres  %7.2f ms a frame           (picture %08x)\n", w1 / kFrames * 1e3, hash1);
  printf("W3 small    %7.2f M triangles a second (picture %08x)\n", kTriangles / w3 * 1e-6, hash3);
  return 0;
}
