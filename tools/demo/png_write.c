/* 5:5:5 to 8-bit RGB by bit replication, so 31 becomes 255 and 0 stays 0. */
#include "png_write.h"

#include <png.h>
#include <stdio.h>
#include <stdlib.h>

static unsigned char Widen(unsigned v) { return (unsigned char)((v << 3) | (v >> 2)); }

int WritePng555(const char* path, const uint16_t* pixels, int width, int height, int pitch) {
  return WritePng555Alpha(path, pixels, width, height, pitch, NULL);
}

int WritePng555Alpha(const char* path, const uint16_t* pixels, int width, int height, int pitch,
                     const unsigned char* alpha) {
  const int channels = alpha != NULL ? 4 : 3;
  FILE* file = fopen(path, "wb");
  if (file == NULL) return 0;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, NULL, NULL, NULL);
  png_infop info = png ? png_create_info_struct(png) : NULL;
  unsigned char* row = malloc((size_t)width * 4);
  int ok = 0;
  if (info != NULL && row != NULL && setjmp(png_jmpbuf(png)) == 0) {
    png_init_io(png, file);
    png_set_IHDR(png, info, (png_uint_32)width, (png_uint_32)height, 8, alpha != NULL ? PNG_COLOR_TYPE_RGBA : PNG_COLOR_TYPE_RGB,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    for (int y = 0; y < height; y++) {
      const uint16_t* src = pixels + (size_t)y * pitch;
      for (int x = 0; x < width; x++) {
        unsigned char* out = row + channels * x;
        const unsigned char a = alpha != NULL ? alpha[(size_t)y * width + x] : 255;
        out[0] = a ? Widen(src[x] >> 10 & 31) : 0;
        out[1] = a ? Widen(src[x] >> 5 & 31) : 0;
        out[2] = a ? Widen(src[x] & 31) : 0;
        if (alpha != NULL) out[3] = a;
      }
      png_write_row(png, row);
    }
    png_write_end(png, NULL);
    ok = 1;
  }
  png_destroy_write_struct(&png, info ? &info : NULL);
  free(row);
  return fclose(file) == 0 && ok;
}
