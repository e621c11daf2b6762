// Reads a PNG and counts the pixels that differ from a background colour.
#ifndef E3D_TOOLS_IMAGE_STATS_H
#define E3D_TOOLS_IMAGE_STATS_H

#include <stb_image.h>
#include <stdint.h>
#include <stdlib.h>

struct ImageStats {
  int width = 0, height = 0;
  long covered = 0;  // pixels further than a 5-bit step from the background
};

// False when the file cannot be decoded.
inline bool ReadImageStats(const char* path, uint32_t background, ImageStats* out) {
  int n = 0;
  unsigned char* rgb = stbi_load(path, &out->width, &out->height, &n, 3);
  if (rgb == nullptr) return false;
  const int bg[3] = {int(background >> 16 & 255), int(background >> 8 & 255), int(background & 255)};
  out->covered = 0;
  for (long i = 0; i < long(out->width) * out->height; i++) {
    int d = 0;
    for (int c = 0; c < 3; c++) d += abs(rgb[3 * i + c] - bg[c]);
    out->covered += d > 12;
  }
  stbi_image_free(rgb);
  return true;
}

#endif
