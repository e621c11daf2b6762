// Bit-level helpers of the arithmetic primitives. Everything here is plain
// IEEE double arithmetic in round-to-nearest, so it gives the same bits on
// every build; nothing goes through the x87 unit or libm.
#pragma once
#include <stdint.h>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include <bit>

namespace e3d::fp {

inline constexpr double kTwo52 = 4503599627370496.0;  // 2^52: from here on every double is integral
inline constexpr double kTwo32 = 4294967296.0;
inline constexpr double kTwo31 = 2147483648.0;
inline constexpr double kTwo63 = 9223372036854775808.0;
inline constexpr double kInf = __builtin_huge_val();
inline constexpr uint64_t kDefaultNaNBits = 0xFFF8000000000000u;  // what SSE and x87 produce

inline constexpr double kPi = 0x1.921fb54442d18p+1;
inline constexpr double kHalfPi = 0x1.921fb54442d18p+0;
inline constexpr double kLn2 = 0x1.62e42fefa39efp-1;
inline constexpr double kLn2Hi = 0x1.62e42fee00000p-1;  // 32 bits: n * kLn2Hi is exact
inline constexpr double kLn2Lo = 0x1.a39ef35793c76p-33;
inline constexpr double kLog2E = 0x1.71547652b82fep+0;

inline uint64_t Bits(double x) { return __builtin_bit_cast(uint64_t, x); }
inline double FromBits(uint64_t b) { return __builtin_bit_cast(double, b); }
inline bool SignBit(double x) { return (Bits(x) >> 63) != 0; }
inline bool SignBit(float x) { return (__builtin_bit_cast(uint32_t, x) >> 31) != 0; }
inline bool IsNaN(double x) { return x != x; }
inline bool IsFinite(double x) { return (Bits(x) & (uint64_t{0x7FF} << 52)) != (uint64_t{0x7FF} << 52); }
inline double Abs(double x) { return FromBits(Bits(x) & ~(uint64_t{1} << 63)); }

inline double NaN() { return FromBits(kDefaultNaNBits); }

// The correctly rounded square root: the SSE instruction on x86, never a
// libm call; elsewhere the processor's own, which IEEE rounds alike.
inline double Sqrt(double x) {
#if defined(__SSE2__)
  return _mm_cvtsd_f64(_mm_sqrt_sd(_mm_setzero_pd(), _mm_set_sd(x)));
#else
  return __builtin_sqrt(x);
#endif
}

// Nearest integer, ties to even, in the current (nearest) mode: adding 2^52
// pushes the fraction out of the significand. Magnitudes from 2^52 on, and
// non-finite values, come back unchanged. The sign of zero is kept.
inline double RoundEven(double x) {
  double a = Abs(x);
  if (!(a < kTwo52)) return x;
  double r = (a + kTwo52) - kTwo52;
  return SignBit(x) ? -r : r;
}

// The nearest integer of x, ties to even, for |x| below 2^30: the one SSE2
// conversion on x86, the rounding above elsewhere; the same integer.
inline int32_t NearestInt(double x) {
#if defined(__SSE2__)
  return _mm_cvtsd_si32(_mm_set_sd(x));
#else
  return static_cast<int32_t>(RoundEven(x));
#endif
}

// Largest integer not above x (x finite, or returned unchanged).
inline double Floor(double x) {
  double r = RoundEven(x);
  return r > x ? r - 1.0 : r;
}

// x * 2^n for -1022 <= n <= 1023, exact unless the product over- or underflows.
inline double Scale2(double x, int n) { return x * FromBits(static_cast<uint64_t>(n + 1023) << 52); }

// c[0] + c[1] z + ... + c[N-1] z^(N-1), by Horner's rule.
template <int N>
inline double Polynomial(double z, const double (&c)[N]) {
  double p = c[N - 1];
  for (int i = N - 2; i >= 0; i--) p = p * z + c[i];
  return p;
}

// 1/n!, correctly rounded (n! itself is exact in a double up to 18!).
constexpr double InvFactorial(int n) {
  double f = 1.0;
  for (int i = 2; i <= n; i++) f *= i;
  return 1.0 / f;
}

// Low 32 bits of an integral value of magnitude below 2^63, without a 64-bit
// conversion (which i386 would do on the x87 unit).
inline int32_t Low32(double integral) {
  double high = Floor(integral * (1.0 / kTwo32));
  double low = integral - high * kTwo32;  // exact, in [0, 2^32)
  return low >= kTwo31 ? static_cast<int32_t>(low - kTwo32) : static_cast<int32_t>(low);
}

}  // namespace e3d::fp
