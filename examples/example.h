/* What the examples share: a viewport over their own pixel buffer, and a
   picture written as a binary PPM file. */
#ifndef EXAMPLES_EXAMPLE_H
#define EXAMPLES_EXAMPLE_H

#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include "engine3d.h"

/* A width x height viewport drawing into pixels (rows width apart), enabled;
   with a depth buffer when depth is 1. Null when out of memory. */
static Viewport* CreateExampleViewport(uint16_t* pixels, int width, int height, int depth) {
  SurfaceDesc surface;
  memset(&surface, 0, sizeof surface); /* only the named words are read */
  surface.pixels = pixels;
  surface.width = (uint32_t)width;
  surface.height = (uint32_t)height;
  surface.pitch = (uint32_t)width * sizeof pixels[0];
  Viewport* vp = CreateViewport(&surface, width, height, depth);
  if (vp != NULL) SetViewportType(vp, E3D_VIEWPORT_ENABLED | 1);
  return vp;
}

/* Writes a 5:5:5 picture as a binary PPM file; returns 1 when written. */
static int WritePpm(const char* path, const uint16_t* pixels, int width, int height) {
  FILE* f = fopen(path, "wb");
  if (f == NULL) return 0;
  fprintf(f, "P6\n%d %d\n255\n", width, height);
  for (int i = 0; i < width * height; i++) {
    const unsigned c[3] = {pixels[i] >> 10 & 31u, pixels[i] >> 5 & 31u, pixels[i] & 31u};
    for (int k = 0; k < 3; k++) fputc((int)(c[k] << 3 | c[k] >> 2), f);
  }
  return fclose(f) == 0;
}

#endif
