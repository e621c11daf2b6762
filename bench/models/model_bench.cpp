// e3d_model_bench generate FORMAT TRIANGLES FILE: writes a sphere grid of
// about TRIANGLES triangles as OBJ (text), PLY or STL (binary, little endian).
// e3d_model_bench read FILE...: reads each file with our reader (best of
// three, processor time of this thread) and prints megabytes per second.
// e3d_model_bench run PROGRAM ARGS...: runs a program and prints its wall
// time and peak memory (best time of three).
#include <assimp/scene.h>
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "../thread_clock.h"
#include "own_readers.h"

namespace {

// Rows of segments vertices between the poles, and a fan to each pole: 4 R^2
// triangles for R rows and 2 R segments, every one with area.
struct Sphere {
  int rows, segments;
  std::vector<float> xyz;
  std::vector<unsigned> triangles;  // 0-based, wound outward
  explicit Sphere(long long target) {
    rows = int(sqrt(double(target) / 4.0));
    if (rows < 2) rows = 2;
    segments = 2 * rows;
    const double pi = 3.14159265358979323846;
    for (int r = 0; r < rows; r++) {
      const double lat = -pi / 2 + pi * (r + 0.5) / rows;
      for (int s = 0; s < segments; s++) {
        const double lon = 2 * pi * s / segments;
        xyz.insert(xyz.end(), {float(cos(lat) * cos(lon)), float(sin(lat)), float(cos(lat) * sin(lon))});
      }
    }
    const unsigned south = unsigned(rows * segments), north = south + 1;
    xyz.insert(xyz.end(), {0, -1, 0, 0, 1, 0});
    auto at = [&](int r, int s) { return unsigned(r * segments + (s % segments)); };
    for (int s = 0; s < segments; s++) triangles.insert(triangles.end(), {south, at(0, s), at(0, s + 1)});
    for (int r = 0; r + 1 < rows; r++)
      for (int s = 0; s < segments; s++) {
        triangles.insert(triangles.end(), {at(r, s), at(r + 1, s), at(r + 1, s + 1)});
        triangles.insert(triangles.end(), {at(r, s), at(r + 1, s + 1), at(r, s + 1)});
      }
    for (int s = 0; s < segments; s++)
      triangles.insert(triangles.end(), {north, at(rows - 1, s + 1), at(rows - 1, s)});
  }
};

int Generate(const char* format, long long target, const char* path) {
  const Sphere sphere(target);
  FILE* f = fopen(path, "wb");
  if (f == nullptr) return perror(path), 1;
  const size_t vertices = sphere.xyz.size() / 3, triangles = sphere.triangles.size() / 3;
  const float* p = sphere.xyz.data();
  const unsigned* t = sphere.triangles.data();
  if (!strcmp(format, "obj")) {
    for (size_t i = 0; i < vertices; i++)
      fprintf(f, "v %.6f %.6f %.6f\n", p[3 * i], p[3 * i + 1], p[3 * i + 2]);
    for (size_t i = 0; i < triangles; i++)
      fprintf(f, "f %u %u %u\n", t[3 * i] + 1, t[3 * i + 1] + 1, t[3 * i + 2] + 1);
  } else if (!strcmp(format, "ply")) {
    fprintf(f,
            "ply\nformat binary_little_endian 1.0\nelement vertex %zu\nproperty float x\nproperty float y\n"
            "property float z\nelement face %zu\nproperty list uchar int vertex_indices\nend_header\n",
            vertices, triangles);
    fwrite(p, 12, vertices, f);
    for (size_t i = 0; i < triangles; i++) {
      const unsigned char three = 3;
      fwrite(&three, 1, 1, f);
      fwrite(t + 3 * i, 4, 3, f);
    }
  } else if (!strcmp(format, "stl")) {
    char header[80] = "sphere grid";
    fwrite(header, 1, 80, f);
    const unsigned count = unsigned(triangles);
    fwrite(&count, 4, 1, f);
    for (size_t i = 0; i < triangles; i++) {
      float facet[12] = {0, 0, 0};
      for (int c = 0; c < 3; c++) memcpy(facet + 3 + 3 * c, p + 3 * t[3 * i + c], 12);
      // The facet normal: the corners' direction from the centre, averaged.
      for (int k = 0; k < 3; k++) facet[k] = (facet[3 + k] + facet[6 + k] + facet[9 + k]) / 3;
      const unsigned short attributes = 0;
      fwrite(facet, 4, 12, f);
      fwrite(&attributes, 2, 1, f);
    }
  } else {
    fclose(f);
    return fprintf(stderr, "formats: obj, ply, stl\n"), 1;
  }
  fclose(f);
  printf("%s: %zu vertices, %zu triangles\n", path, vertices, triangles);
  return 0;
}

int Read(const char* path) {
  struct stat st;
  if (stat(path, &st) != 0) return perror(path), 1;
  double best = 1e30;
  long long polygons = 0;
  for (int run = 0; run < 3; run++) {
    std::string why;
    const double start = ThreadSeconds();
    const OwnScene scene = ReadOwnModel(path, &why);
    const double took = ThreadSeconds() - start;
    if (scene == nullptr) return fprintf(stderr, "%s: %s\n", path, why.c_str()), 1;
    best = took < best ? took : best;
    polygons = 0;
    for (unsigned m = 0; m < scene->mNumMeshes; m++) polygons += scene->mMeshes[m]->mNumFaces;
  }
  const double megabytes = double(st.st_size) / 1e6;
  printf("%-34s %7.1f MB %9lld polygons  read in %6.3f s  %7.1f MB/s\n", path, megabytes, polygons, best,
         megabytes / best);
  return 0;
}

double WallSeconds() {
  timespec t;
  clock_gettime(CLOCK_MONOTONIC, &t);
  return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
}

int Run(char** argv) {
  double best = 1e30;
  long peak = 0;
  for (int run = 0; run < 3; run++) {
    const double start = WallSeconds();
    const pid_t child = fork();
    if (child == 0) {
      execv(argv[0], argv);
      _exit(127);
    }
    int status = 0;
    rusage usage{};
    if (child < 0 || wait4(child, &status, 0, &usage) != child || !WIFEXITED(status) ||
        WEXITSTATUS(status) != 0)
      return fprintf(stderr, "%s failed\n", argv[0]), 1;
    const double took = WallSeconds() - start;
    best = took < best ? took : best;
    peak = usage.ru_maxrss > peak ? usage.ru_maxrss : peak;
  }
  printf("  in all %6.2f s, peak %6.0f MB\n", best, double(peak) / 1024.0);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 5 && !strcmp(argv[1], "generate")) return Generate(argv[2], atoll(argv[3]), argv[4]);
  if (argc >= 3 && !strcmp(argv[1], "read")) {
    int failed = 0;
    for (int i = 2; i < argc; i++) failed |= Read(argv[i]);
    return failed;
  }
  if (argc >= 3 && !strcmp(argv[1], "run")) return Run(argv + 2);
  fprintf(stderr,
          "usage: e3d_model_bench generate obj|ply|stl TRIANGLES FILE\n"
          "       e3d_model_bench read FILE...\n"
          "       e3d_model_bench run PROGRAM ARGS...\n");
  return 1;
}
