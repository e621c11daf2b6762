// The AVX2 span bodies: sixteen pixels (two vectors of eight 32-bit lanes)
// per step. Compiled for AVX2 function by function, so the build's baseline
// stays SSE2 and these run only where UpdateDrawScanline found AVX2. Loads
// and stores are unaligned: rows start anywhere.
#include "raster/span_wide.h"

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>

#define E3D_AVX2 __attribute__((target("avx2")))

namespace e3d {
namespace {

// Sixteen 32-bit values base + i * step, i = 0..15, wrapping as the pixel
// loops' repeated additions wrap.
struct Lanes {
  __m256i low, high;
};

E3D_AVX2 inline Lanes Series(uint32_t base, int32_t step) {
  const __m256i index = _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7);
  const __m256i low = _mm256_add_epi32(_mm256_set1_epi32(static_cast<int32_t>(base)),
                                       _mm256_mullo_epi32(index, _mm256_set1_epi32(step)));
  return {low,
          _mm256_add_epi32(low, _mm256_set1_epi32(static_cast<int32_t>(static_cast<uint32_t>(step) * 8u)))};
}

// Two vectors of eight 32-bit values, each below 65536, as sixteen pixels in order.
E3D_AVX2 inline __m256i Pack(__m256i low, __m256i high) {
  return _mm256_permute4x64_epi64(_mm256_packus_epi32(low, high), 0xD8);
}

// The block's depth test: lanes where z < stored depth (unsigned), whose
// depths take z; the mask comes back as sixteen 16-bit lanes.
E3D_AVX2 inline __m256i TestLess(const DepthRun& d) {
  const Lanes z = Series(d.z, d.zStep);
  const __m256i sign = _mm256_set1_epi32(INT32_MIN);
  __m256i* depth = reinterpret_cast<__m256i*>(d.depth);
  const __m256i stored0 = _mm256_loadu_si256(depth), stored1 = _mm256_loadu_si256(depth + 1);
  const __m256i pass0 = _mm256_cmpgt_epi32(_mm256_xor_si256(stored0, sign), _mm256_xor_si256(z.low, sign));
  const __m256i pass1 = _mm256_cmpgt_epi32(_mm256_xor_si256(stored1, sign), _mm256_xor_si256(z.high, sign));
  _mm256_storeu_si256(depth, _mm256_blendv_epi8(stored0, z.low, pass0));
  _mm256_storeu_si256(depth + 1, _mm256_blendv_epi8(stored1, z.high, pass1));
  return _mm256_permute4x64_epi64(_mm256_packs_epi32(pass0, pass1), 0xD8);
}

E3D_AVX2 inline void StoreWhere(uint16_t* pixels, __m256i colors, __m256i mask) {
  __m256i* p = reinterpret_cast<__m256i*>(pixels);
  _mm256_storeu_si256(p, _mm256_blendv_epi8(_mm256_loadu_si256(p), colors, mask));
}

// One unaligned block at the start, aligned blocks after it (stores that
// cross no cache line), and a last block that ends at the span's end,
// overlapping the one before: the same colour twice costs less than a pixel
// loop. count is at least kWideBlock.
E3D_AVX2 void Fill(uint16_t* pixels, int32_t count, uint16_t color) {
  const __m256i c = _mm256_set1_epi16(static_cast<int16_t>(color));
  uint16_t* const end = pixels + count;
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(pixels), c);
  uint16_t* p = pixels + ((32 - (reinterpret_cast<uintptr_t>(pixels) & 31)) >> 1);
  for (; p + kWideBlock <= end; p += kWideBlock) _mm256_store_si256(reinterpret_cast<__m256i*>(p), c);
  if (p < end) _mm256_storeu_si256(reinterpret_cast<__m256i*>(end - kWideBlock), c);
}

E3D_AVX2 void FillLess(uint16_t* pixels, const DepthRun& d, uint16_t color) {
  StoreWhere(pixels, _mm256_set1_epi16(static_cast<int16_t>(color)), TestLess(d));
}

// One 8-bit channel dithered to 5 bits: c >> 3, plus one where the
// threshold lies below c & 7 (taken as 0 from 248 on).
E3D_AVX2 inline __m256i Dither(__m256i value, __m256i thresholds) {
  const __m256i c = _mm256_srli_epi32(value, 16);
  const __m256i low = _mm256_andnot_si256(_mm256_cmpgt_epi32(c, _mm256_set1_epi32(247)),
                                          _mm256_and_si256(c, _mm256_set1_epi32(7)));
  return _mm256_sub_epi32(_mm256_srli_epi32(c, 3), _mm256_cmpgt_epi32(low, thresholds));
}

// Sixteen dithered ramp pixels from column x; the ramp's values move on by 16 steps.
struct RampState {
  Lanes channel[3];
  __m256i thresholds;
};

E3D_AVX2 inline RampState StartRamp(int32_t x, const RampRun& r) {
  RampState s;
  for (int k = 0; k < 3; ++k) s.channel[k] = Series(static_cast<uint32_t>(r.value[k]), r.step[k]);
  const uint8_t* t = r.thresholds;
  // Period 4 divides 8: both halves of the block see the same thresholds.
  s.thresholds = _mm256_setr_epi32(t[x & 3], t[(x + 1) & 3], t[(x + 2) & 3], t[(x + 3) & 3], t[x & 3],
                                   t[(x + 1) & 3], t[(x + 2) & 3], t[(x + 3) & 3]);
  return s;
}

E3D_AVX2 inline __m256i RampPixels(RampState& s, const RampRun& r) {
  __m256i half[2];
  for (int h = 0; h < 2; ++h) {
    __m256i pixel = _mm256_setzero_si256();
    for (int k = 0; k < 3; ++k) {
      const __m256i v = h == 0 ? s.channel[k].low : s.channel[k].high;
      pixel = _mm256_or_si256(_mm256_slli_epi32(pixel, 5), Dither(v, s.thresholds));
    }
    half[h] = pixel;
  }
  for (int k = 0; k < 3; ++k) {
    const __m256i step16 = _mm256_set1_epi32(static_cast<int32_t>(static_cast<uint32_t>(r.step[k]) * 16u));
    s.channel[k].low = _mm256_add_epi32(s.channel[k].low, step16);
    s.channel[k].high = _mm256_add_epi32(s.channel[k].high, step16);
  }
  return Pack(half[0], half[1]);
}

E3D_AVX2 void Ramp(uint16_t* pixels, int32_t x, int32_t count, const RampRun& r) {
  RampState s = StartRamp(x, r);
  for (int32_t i = 0; i < count; i += kWideBlock)
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(pixels + i), RampPixels(s, r));
}

E3D_AVX2 void RampLess(uint16_t* pixels, int32_t x, const DepthRun& d, const RampRun& r) {
  RampState s = StartRamp(x, r);
  StoreWhere(pixels, RampPixels(s, r), TestLess(d));
}

constexpr WideSpans kAvx2Spans = {Fill, FillLess, Ramp, RampLess};

}  // namespace

const WideSpans* Avx2Spans() { return &kAvx2Spans; }

}  // namespace e3d

#else

namespace e3d {

const WideSpans* Avx2Spans() { return nullptr; }

}  // namespace e3d

#endif
