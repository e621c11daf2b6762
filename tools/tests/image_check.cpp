// image_check IMAGE RRGGBB FRACTION: succeeds when more than FRACTION of the
// picture differs from the background colour RRGGBB.
// image_check IMAGE alpha FRACTION SIZE: succeeds when the picture is SIZE x
// SIZE with an alpha channel, more than FRACTION of it opaque and some of it
// transparent.
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "image_stats.h"

int main(int argc, char** argv) {
  if (argc == 5 && !strcmp(argv[2], "alpha")) {
    int w = 0, h = 0, n = 0;
    unsigned char* rgba = stbi_load(argv[1], &w, &h, &n, 4);
    long opaque = 0, clear = 0;
    for (long i = 0; rgba != nullptr && i < long(w) * h; i++)
      opaque += rgba[4 * i + 3] == 255, clear += rgba[4 * i + 3] == 0;
    stbi_image_free(rgba);
    printf("%s: %dx%d, %d channels, %ld opaque, %ld transparent\n", argv[1], w, h, n, opaque, clear);
    const int size = atoi(argv[4]);
    return w == size && h == size && n == 4 && opaque > atof(argv[3]) * w * h && clear > 0 ? 0 : 1;
  }
  if (argc != 4) {
    fprintf(stderr, "usage: image_check IMAGE RRGGBB FRACTION\n");
    return 2;
  }
  ImageStats stats;
  if (!ReadImageStats(argv[1], uint32_t(strtoul(argv[2], nullptr, 16)), &stats)) {
    printf("%s: cannot read\n", argv[1]);
    return 1;
  }
  const double covered = double(stats.covered) / (double(stats.width) * stats.height);
  printf("%s: %dx%d, %.1f%% covered\n", argv[1], stats.width, stats.height, 100 * covered);
  return covered > atof(argv[3]) ? 0 : 1;
}
