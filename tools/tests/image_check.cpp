// image_check IMAGE RRGGBB FRACTION: succeeds when more than FRACTION of the
// picture differs from the background colour RRGGBB.
#include <stdio.h>
#include <stdlib.h>

#include "image_stats.h"

int main(int argc, char** argv) {
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
