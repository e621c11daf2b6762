// Wide span bodies: the stores of plain fills, Gouraud ramps and depth tests
// sixteen pixels at a time, for processors that have them. UpdateDrawScanline
// fills wideSpans at start-up; an entry left null (every entry, on a
// processor without the instructions) leaves the pixel loops of span.h to do
// all the work. Each body writes exactly the pixels and depths those loops
// write.
#pragma once
#include <stdint.h>

namespace e3d {

inline constexpr int32_t kWideBlock = 16;

// An 8.16 Gouraud ramp of three channels (red, green, blue) and the dither
// thresholds of its row, indexed by x & 3.
struct RampRun {
  int32_t value[3];
  int32_t step[3];
  const uint8_t* thresholds;
};

// Depths of one block: z at its first pixel, zStep added per pixel.
struct DepthRun {
  uint32_t* depth;
  uint32_t z;
  int32_t zStep;
};

struct WideSpans {
  // count pixels from pixels (at least kWideBlock) set to color.
  void (*fill)(uint16_t* pixels, int32_t count, uint16_t color);
  // One block: color where z is strictly nearer than the stored depth, which takes z.
  void (*fillLess)(uint16_t* pixels, const DepthRun& d, uint16_t color);
  // count pixels from column x (a multiple of kWideBlock) of the dithered ramp.
  void (*ramp)(uint16_t* pixels, int32_t x, int32_t count, const RampRun& r);
  // One block of the ramp from column x behind the strict depth test.
  void (*rampLess)(uint16_t* pixels, int32_t x, const DepthRun& d, const RampRun& r);
};

extern WideSpans wideSpans;

// The span bodies of each path: the pixel loops alone, or with the AVX2
// bodies where the processor has AVX2.
enum class SpanPath { kBaseline, kAvx2 };

// Chooses a path; false (and nothing changed) when this build or processor
// lacks it. UpdateDrawScanline chooses from the host's processor code; the
// tests call this to draw the same scenes on every path.
bool UseSpanPath(SpanPath path);

// The AVX2 bodies, null where the build is not for x86.
const WideSpans* Avx2Spans();

}  // namespace e3d
