/* Writes a 16-bit 5:5:5 image as an 8-bit RGB PNG. */
#ifndef DEMO_PNG_WRITE_H
#define DEMO_PNG_WRITE_H

#include <stdint.h>

/* pitch is in pixels; bit 15 of every pixel is ignored. Returns 1 when the
   file was written, 0 otherwise. */
int WritePng555(const char* path, const uint16_t* pixels, int width, int height, int pitch);

/* The same with an alpha channel from alpha (one byte a pixel, rows of
   width): an RGBA PNG. A transparent pixel is written as black. */
int WritePng555Alpha(const char* path, const uint16_t* pixels, int width, int height, int pitch,
                     const unsigned char* alpha);

#endif
