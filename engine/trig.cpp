// Sine, cosine and tangent. The argument is reduced to [-pi/4, pi/4] exactly
// (integer arithmetic on the bits of 2/pi, so huge angles come out right too)
// and the reduced angle goes through Taylor polynomials in double that are
// good to about 1e-17 there; each float result is then one rounding away from
// the true value.
#include "engine/fp.h"
#include "engine/math.h"

namespace e3d {

namespace {

// 2/pi in binary, 32 bits a word from the first bit after the point: enough
// for the whole double range (exponent 1023 reaches bit 1100).
constexpr uint32_t kTwoOverPi[] = {
    0xA2F9836E, 0x4E441529, 0xFC2757D1, 0xF534DDC0, 0xDB629599, 0x3C439041,
    0xFE5163AB, 0xDEBBC561, 0xB7246E3A, 0x424DD2E0, 0x06492EEA, 0x09D1921C,
    0xFE1DEB1C, 0xB129A73E, 0xE88235F5, 0x2EBB4484, 0xE99C7026, 0xB45F7E41,
    0x3991D639, 0x835339F4, 0x9C845F8B, 0xBDF9283B, 0x1FF897FF, 0xDE05980F,
    0xEF2F118B, 0x5A0A6D1F, 0x6D367ECF, 0x27CB09B7, 0x4F463F66, 0x9E5FEA2D,
    0x7527BAC7, 0xEBE5F17B, 0x3D0739F7, 0x8A5292EA, 0x6BFB5FB1, 0x1F8D5D08,
    0x56033046, 0xFC7B6BAB, 0xF0CFBC20, 0x9AF4361D,
};
constexpr int kWords = sizeof kTwoOverPi / sizeof kTwoOverPi[0];

uint32_t TwoOverPiWord(int index) {
  return index >= 0 && index < kWords ? kTwoOverPi[index] : 0;
}

// Bits k .. k+31 of 2/pi (bit 1 is the first after the point; bits before it
// are 0), the first one most significant.
uint32_t TwoOverPiBits(int k) {
  int j = k - 1;
  int word = j >> 5;
  int shift = j & 31;
  uint32_t hi = TwoOverPiWord(word);
  if (shift == 0) return hi;
  return (hi << shift) | (TwoOverPiWord(word + 1) >> (32 - shift));
}

// Reduces a finite a >= 0 to a = (n + f) pi/2 with n mod 4 in *quadrant and
// |f| <= 1/2; returns f pi/2. With a = M 2^e (M the 53-bit significand), the
// bits of 2/pi whose product with M has weight 4 or more drop out modulo 4,
// and the 128 bits after them make M * G mod 2^128 the quarter turns of a
// with 126 fraction bits, good to 2^-73 turns.
double ReduceQuarterTurns(double a, int* quadrant) {
  uint64_t bits = fp::Bits(a);
  int biased = static_cast<int>(bits >> 52);
  uint64_t significand = bits & ((uint64_t{1} << 52) - 1);
  if (biased != 0) significand |= uint64_t{1} << 52;
  else biased = 1;
  int e = biased - 1075;

  uint32_t m[2] = {static_cast<uint32_t>(significand), static_cast<uint32_t>(significand >> 32)};
  uint32_t g[4];
  for (int i = 0; i < 4; i++) g[i] = TwoOverPiBits(e - 1 + 32 * (3 - i));

  uint32_t y[4] = {0, 0, 0, 0};
  for (int i = 0; i < 2; i++) {
    uint64_t carry = 0;
    for (int j = 0; i + j < 4; j++) {
      uint64_t t = static_cast<uint64_t>(m[i]) * g[j] + y[i + j] + carry;
      y[i + j] = static_cast<uint32_t>(t);
      carry = t >> 32;
    }
  }

  // Round to the nearest quarter turn: add one half, the top two bits are n.
  y[3] += 0x20000000u;
  *quadrant = static_cast<int>(y[3] >> 30);
  // The fraction, shifted to the top and made signed: f = value * 2^-128.
  uint32_t v3 = (y[3] << 2) | (y[2] >> 30);
  uint32_t v2 = (y[2] << 2) | (y[1] >> 30);
  uint32_t v1 = (y[1] << 2) | (y[0] >> 30);
  uint32_t v0 = y[0] << 2;
  int32_t s3 = static_cast<int32_t>(v3 ^ 0x80000000u);
  double f = static_cast<double>(s3) * 0x1p-32 + static_cast<double>(v2) * 0x1p-64;
  f += static_cast<double>(v1) * 0x1p-96;
  f += static_cast<double>(v0) * 0x1p-128;
  return f * fp::kHalfPi;
}

// sin and cos of |r| <= pi/4: Taylor to r^17 and r^16, truncation under 3e-18.
constexpr double kSin[] = {-fp::InvFactorial(3), fp::InvFactorial(5), -fp::InvFactorial(7),
                           fp::InvFactorial(9), -fp::InvFactorial(11), fp::InvFactorial(13),
                           -fp::InvFactorial(15), fp::InvFactorial(17)};
constexpr double kCos[] = {fp::InvFactorial(4), -fp::InvFactorial(6), fp::InvFactorial(8),
                           -fp::InvFactorial(10), fp::InvFactorial(12), -fp::InvFactorial(14),
                           fp::InvFactorial(16)};

double SinKernel(double r) {
  double z = r * r;
  return r + r * z * fp::Polynomial(z, kSin);
}

double CosKernel(double r) {
  double z = r * r;
  return 1.0 - 0.5 * z + z * z * fp::Polynomial(z, kCos);
}

// Reduced angle and quadrant of |x|; small angles need no reduction.
double Reduce(double x, int* quadrant) {
  double a = fp::Abs(x);
  if (a <= 0x1.921fb54442d18p-1) {
    *quadrant = 0;
    return a;
  }
  return ReduceQuarterTurns(a, quadrant);
}

}  // namespace

void SinCosD(double x, double* s, double* c) {
  if (!fp::IsFinite(x)) {
    *s = *c = x - x;
    return;
  }
  int quadrant;
  double r = Reduce(x, &quadrant);
  double sr = SinKernel(r), cr = CosKernel(r);
  double sa, ca;  // of |x|
  switch (quadrant) {
    case 0: sa = sr; ca = cr; break;
    case 1: sa = cr; ca = -sr; break;
    case 2: sa = -sr; ca = -cr; break;
    default: sa = -cr; ca = sr; break;
  }
  *s = fp::SignBit(x) ? -sa : sa;
  *c = ca;
}

double SinD(double x) {
  double s, c;
  SinCosD(x, &s, &c);
  return s;
}

double CosD(double x) {
  double s, c;
  SinCosD(x, &s, &c);
  return c;
}

double TanD(double x) {
  if (!fp::IsFinite(x)) return x - x;
  int quadrant;
  double r = Reduce(x, &quadrant);
  double sr = SinKernel(r), cr = CosKernel(r);
  double t = (quadrant & 1) ? -cr / sr : sr / cr;
  return fp::SignBit(x) ? -t : t;
}

float Sin(float x) { return static_cast<float>(SinD(x)); }
float Cos(float x) { return static_cast<float>(CosD(x)); }
float Tan(float x) { return static_cast<float>(TanD(x)); }
float SinDeg(float x) { return static_cast<float>(SinD(static_cast<double>(x) * DegToRad)); }
float CosDeg(float x) { return static_cast<float>(CosD(static_cast<double>(x) * DegToRad)); }
float TanDeg(float x) { return static_cast<float>(TanD(static_cast<double>(x) * DegToRad)); }

void SinCos(float x, float* s, float* c) {
  double sd, cd;
  SinCosD(x, &sd, &cd);
  *s = static_cast<float>(sd);
  *c = static_cast<float>(cd);
}

}  // namespace e3d
