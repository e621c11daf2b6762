// Square roots, arc tangents, exponentials and logarithms. Each works in
// double with series that are good to about 1e-17 on their reduced ranges and
// rounds once to float at the end.
#include "engine/fp.h"
#include "engine/math.h"

namespace e3d {

namespace {

constexpr double kSqrt2 = 0x1.6a09e667f3bcdp+0;
constexpr double kSqrt3 = 0x1.bb67ae8584caap+0;
constexpr double kSixthPi = 0x1.0c152382d7366p-1;
constexpr double kTanTwelfthPi = 0x1.126145e9ecd56p-2;  // 2 - sqrt(3)

// atan of |u| <= 2 - sqrt(3): the odd series to u^29.
constexpr double kAtan[] = {1.0 / 3,   -1.0 / 5, 1.0 / 7,   -1.0 / 9, 1.0 / 11,  -1.0 / 13, 1.0 / 15,
                            -1.0 / 17, 1.0 / 19, -1.0 / 21, 1.0 / 23, -1.0 / 25, 1.0 / 27,  -1.0 / 29};

double AtanKernel(double u) {
  double z = u * u;
  return u - u * z * fp::Polynomial(z, kAtan);
}

// e^r for |r| <= ln2/2 (and a little more): Taylor to r^13.
constexpr double kExp[] = {fp::InvFactorial(2),  fp::InvFactorial(3),  fp::InvFactorial(4),
                           fp::InvFactorial(5),  fp::InvFactorial(6),  fp::InvFactorial(7),
                           fp::InvFactorial(8),  fp::InvFactorial(9),  fp::InvFactorial(10),
                           fp::InvFactorial(11), fp::InvFactorial(12), fp::InvFactorial(13)};

double ExpKernel(double r) { return 1.0 + (r + r * r * fp::Polynomial(r, kExp)); }

// The series of atanh(s)/s in s^2, to s^22.
constexpr double kAtanh[] = {1.0 / 3,  1.0 / 5,  1.0 / 7,  1.0 / 9,  1.0 / 11, 1.0 / 13,
                             1.0 / 15, 1.0 / 17, 1.0 / 19, 1.0 / 21, 1.0 / 23};

// Scales by 2^n in two steps so that |n| up to about 2000 stays exact until
// the last rounding.
double ScaleBig(double x, int n) {
  int half = n / 2;
  return fp::Scale2(fp::Scale2(x, half), n - half);
}

// Splits a positive finite x into 2^e m with sqrt(1/2) <= m < sqrt(2) and
// returns log(m): 2 atanh((m - 1)/(m + 1)), the series to s^23.
double LogReduced(double x, int* exponent) {
  int shift = 0;
  if (x < 0x1p-1022) {  // subnormal
    x *= 0x1p54;
    shift = 54;
  }
  uint64_t bits = fp::Bits(x);
  int e = static_cast<int>(bits >> 52) - 1023 - shift;
  double m = fp::FromBits((bits & ((uint64_t{1} << 52) - 1)) | (uint64_t{1023} << 52));
  if (m > kSqrt2) {
    m *= 0.5;
    e++;
  }
  *exponent = e;
  double s = (m - 1.0) / (m + 1.0);
  double z = s * s;
  double twoS = 2.0 * s;
  return twoS + twoS * z * fp::Polynomial(z, kAtanh);
}

// The special values shared by the logarithms; true when *out is the answer.
bool LogSpecial(double x, double* out) {
  if (fp::IsNaN(x))
    *out = x;
  else if (x < 0.0)
    *out = fp::NaN();
  else if (x == 0.0)
    *out = -fp::kInf;
  else if (x == fp::kInf)
    *out = x;
  else
    return false;
  return true;
}

double Log2D(double x) {
  double special;
  if (LogSpecial(x, &special)) return special;
  int e;
  double logM = LogReduced(x, &e);
  return e + logM * fp::kLog2E;
}

// 2^t: split t into the nearest integer and a fraction of at most 1/2.
double Exp2D(double t) {
  if (fp::IsNaN(t)) return t;
  if (t > 1100.0) return fp::kInf;
  if (t < -1100.0) return 0.0;
  double n = fp::RoundEven(t);
  return ScaleBig(ExpKernel((t - n) * fp::kLn2), static_cast<int>(n));
}

bool IsIntegral(double v) { return fp::RoundEven(v) == v; }

// sqrt((1 + x)(1 - x)): the other leg of the unit triangle.
double CoLeg(double x) { return fp::Sqrt((1.0 + x) * (1.0 - x)); }

}  // namespace

double AtanD(double x) {
  if (fp::IsNaN(x)) return x;
  double a = fp::Abs(x);
  bool inverted = a > 1.0;
  if (inverted) a = 1.0 / a;
  double r;
  if (a > kTanTwelfthPi)
    r = kSixthPi + AtanKernel((a * kSqrt3 - 1.0) / (a + kSqrt3));
  else
    r = AtanKernel(a);
  if (inverted) r = fp::kHalfPi - r;
  return fp::SignBit(x) ? -r : r;
}

double Atan2D(double x, double y) {
  if (fp::IsNaN(x) || fp::IsNaN(y)) return x + y;
  double ax = fp::Abs(x), ay = fp::Abs(y);
  double r;
  if (ax == 0.0 && ay == 0.0) {
    r = fp::SignBit(x) ? fp::kPi : 0.0;
  } else if (ax == fp::kInf && ay == fp::kInf) {
    r = fp::SignBit(x) ? 0.75 * fp::kPi : 0.25 * fp::kPi;
  } else if (ay <= ax) {
    double t = AtanD(ay / ax);
    r = fp::SignBit(x) ? fp::kPi - t : t;
  } else {
    double t = AtanD(ax / ay);
    r = fp::SignBit(x) ? fp::kHalfPi + t : fp::kHalfPi - t;
  }
  return fp::SignBit(y) ? -r : r;
}

double ExpD(double x) {
  if (fp::IsNaN(x)) return x;
  if (x > 710.0) return fp::kInf;
  if (x < -746.0) return 0.0;
  // Cody and Waite: n ln2 in two parts, the first exact in its product.
  double n = fp::RoundEven(x * fp::kLog2E);
  double r = (x - n * fp::kLn2Hi) - n * fp::kLn2Lo;
  return ScaleBig(ExpKernel(r), static_cast<int>(n));
}

double LogD(double x) {
  double special;
  if (LogSpecial(x, &special)) return special;
  int e;
  double logM = LogReduced(x, &e);
  return e * fp::kLn2Hi + (logM + e * fp::kLn2Lo);
}

float Sqrt(float x) { return static_cast<float>(fp::Sqrt(x)); }
float InvSqrt(float x) { return static_cast<float>(1.0 / fp::Sqrt(x)); }
float Hypot(float a, float b) {
  return static_cast<float>(fp::Sqrt(static_cast<double>(a) * a + static_cast<double>(b) * b));
}

float Atan(float x) { return static_cast<float>(AtanD(x)); }
float AtanDeg(float x) { return static_cast<float>(AtanD(x) * RadToDeg); }
float Atan2(float x, float y) { return static_cast<float>(Atan2D(x, y)); }
float Asin(float x) { return static_cast<float>(Atan2D(CoLeg(x), x)); }
float AsinDeg(float x) { return static_cast<float>(Atan2D(CoLeg(x), x) * RadToDeg); }
float Acos(float x) { return static_cast<float>(Atan2D(x, CoLeg(x))); }
float AcosDeg(float x) { return static_cast<float>(Atan2D(x, CoLeg(x)) * RadToDeg); }

float Exp(float x) { return static_cast<float>(ExpD(x)); }
float Log(float x) { return static_cast<float>(LogD(x)); }

float Pow(float x, float y) {
  if (__builtin_bit_cast(uint32_t, y) == 0) return 1.0f;
  double magnitude = Exp2D(y * Log2D(fp::Abs(x)));
  // A negative base keeps the sign only for an odd integral exponent; a
  // fractional exponent takes the magnitude rather than giving no number.
  if (fp::SignBit(x) && IsIntegral(y) && !IsIntegral(y * 0.5)) magnitude = -magnitude;
  return static_cast<float>(magnitude);
}

}  // namespace e3d
