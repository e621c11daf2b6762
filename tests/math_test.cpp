// Arithmetic primitives: conversions, elementary functions against libm's
// double functions (the only place libm is used), vectors and matrices.
#include "engine/math.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>

#include "engine3d.h"

namespace {

using namespace e3d;

uint32_t BitsOf(float f) { return __builtin_bit_cast(uint32_t, f); }

// Distance in units in the last place; 0 for two NaNs, huge for one.
int64_t UlpDistance(float a, float b) {
  if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b) ? 0 : INT64_MAX;
  auto ordered = [](float f) {
    int32_t i = __builtin_bit_cast(int32_t, f);
    return i >= 0 ? int64_t{i} : -int64_t{i & 0x7FFFFFFF};
  };
  return std::llabs(ordered(a) - ordered(b));
}

// Reproducible inputs (the digest below depends on this exact sequence).
struct Random {
  uint64_t state = 0x9E3779B97F4A7C15u;
  uint32_t Next() {
    state ^= state << 13;
    state ^= state >> 7;
    state ^= state << 17;
    return static_cast<uint32_t>(state >> 16);
  }
  float Uniform(float lo, float hi) {
    return lo + (hi - lo) * static_cast<float>(Next() >> 8) * (1.0f / 16777216.0f);
  }
  float AnyFinite() {
    for (;;) {
      float f = __builtin_bit_cast(float, Next());
      if (std::isfinite(f)) return f;
    }
  }
};

// Small, large and arbitrary finite arguments, mixed.
float Angle(Random& r) {
  switch (r.Next() % 3) {
    case 0:
      return r.Uniform(-10.0f, 10.0f);
    case 1:
      return r.Uniform(-20000.0f, 20000.0f);
#if defined(_WIN32)
    // Windows' C library reduces huge arguments inexactly, so its sin and cos
    // are a reference only on a bounded range; the digest test holds our bits
    // there equal to the other builds'.
    default:
      return r.Uniform(-1e6f, 1e6f);
#else
    default:
      return r.AnyFinite();
#endif
  }
}
float Far(Random& r) { return r.Uniform(-20000.0f, 20000.0f); }
float Near(Random& r) { return r.Uniform(-10.0f, 10.0f); }
float Positive(Random& r) { return std::fabs(r.AnyFinite()); }
float UnitOrNearOne(Random& r) {  // near +-1 asin and acos are steepest
  if (r.Next() & 1) return r.Uniform(-1.0f, 1.0f);
  float x = 1.0f - static_cast<float>(r.Next() % 4096) * 0x1p-24f;
  return r.Next() & 1 ? -x : x;
}
float ExpRange(Random& r) { return r.Uniform(-104.0f, 89.0f); }

TEST(Convert, RoundToEvenAndWrapNotSaturate) {
  // Ties to even; beyond 32 bits the low half of the 64-bit integer; beyond
  // 64 bits, and NaN, the unit's 0x8000000000000000, whose low half is 0.
  const struct {
    double in;
    int32_t out;
  } cases[] = {{2.5, 2},
               {3.5, 4},
               {-2.5, -2},
               {0.49999997f, 0},
               {2147483648.0, INT32_MIN},
               {-2147483649.0, INT32_MAX},
               {1e10, 1410065408},
               {8589934591.0, -1},
               {1e30, 0},
               {NAN, 0}};
  for (const auto& c : cases) EXPECT_EQ(FloatToInt(c.in), c.out) << c.in;
  Random random;
  for (int i = 0; i < 100000; i++) {
    float x = std::ldexp(random.Uniform(-1.0f, 1.0f), static_cast<int>(random.Next() % 64));
    ASSERT_EQ(static_cast<uint32_t>(FloatToInt(x)), static_cast<uint32_t>(std::llrint(x))) << x;
  }
  // The 32-bit store gives 0x80000000 for anything out of its range.
  EXPECT_TRUE(FloatToInt32(2147483647.0) == INT32_MAX && FloatToInt32(2147483647.5) == INT32_MIN);
  EXPECT_TRUE(FloatFloor(-0.5f) == -1 && FloatFloor(3e9f) == INT32_MIN);
  EXPECT_TRUE(FloatRoundAwayFromZero(-1e-30f) == -1 && FloatRoundAwayFromZero(1.1f) == 2);
}

TEST(Elementary, AccurateEverywhere) {
  // At most one ulp off the correctly rounded result, and almost always exact.
  const struct {
    const char* name;
    float (*f)(float);
    double (*reference)(double);
    float (*input)(Random&);
  } cases[] = {
      {"Sin", Sin, [](double x) { return std::sin(x); }, Angle},
      {"Cos", Cos, [](double x) { return std::cos(x); }, Angle},
      {"Tan", Tan, [](double x) { return std::tan(x); }, Angle},
      {"SinDeg", SinDeg, [](double x) { return std::sin(x * DegToRad); }, Far},
      {"CosDeg", CosDeg, [](double x) { return std::cos(x * DegToRad); }, Far},
      {"TanDeg", TanDeg, [](double x) { return std::tan(x * DegToRad); }, Far},
      {"Atan", Atan, [](double x) { return std::atan(x); }, Angle},
      {"AtanDeg", AtanDeg, [](double x) { return std::atan(x) * RadToDeg; }, Near},
      {"Asin", Asin, [](double x) { return std::asin(x); }, UnitOrNearOne},
      {"Acos", Acos, [](double x) { return std::acos(x); }, UnitOrNearOne},
      {"AcosDeg", AcosDeg, [](double x) { return std::acos(x) * RadToDeg; }, UnitOrNearOne},
      {"Exp", Exp, [](double x) { return std::exp(x); }, ExpRange},
      {"Log", Log, [](double x) { return std::log(x); }, Positive},
      {"Sqrt", Sqrt, [](double x) { return std::sqrt(x); }, Positive},
  };
  const int count = 60000;
  for (const auto& c : cases) {
    Random random;
    int exact = 0;
    int64_t worst = 0;
    float worstAt = 0;
    for (int i = 0; i < count; i++) {
      float x = c.input(random);
      int64_t d = UlpDistance(c.f(x), static_cast<float>(c.reference(x)));
      exact += d == 0;
      if (d > worst) worst = d, worstAt = x;
    }
    EXPECT_LE(worst, 1) << c.name << " at " << worstAt;
    EXPECT_GE(exact, count - count / 1000) << c.name;
  }
  // Atan2 takes the point's x first; Pow over its ordinary range.
  Random random;
  int64_t worst = 0;
  for (int i = 0; i < 40000; i++) {
    float x = std::ldexp(random.Uniform(-1, 1), static_cast<int>(random.Next() % 40) - 20);
    float y = std::ldexp(random.Uniform(-1, 1), static_cast<int>(random.Next() % 40) - 20);
    worst = std::max(worst, UlpDistance(Atan2(x, y), static_cast<float>(std::atan2(y, x))));
    float b = random.Uniform(0.001f, 1000.0f), e = random.Uniform(-10.0f, 10.0f);
    worst = std::max(worst, UlpDistance(Pow(b, e), static_cast<float>(std::pow(b, double{e}))));
  }
  EXPECT_LE(worst, 1);
}

TEST(Elementary, SpecialValuesAndPowSigns) {
  EXPECT_EQ(Atan2(-1.0f, -0.0f), -Pi);
  EXPECT_EQ(Hypot(3e30f, 4e30f), 5e30f);                       // no overflow of the squares
  EXPECT_EQ(Pow(-2.0f, 3.0f), -8.0f);                          // odd: negative
  EXPECT_EQ(Pow(-8.0f, 1.0f / 3.0f), Pow(8.0f, 1.0f / 3.0f));  // |x|^y, not a NaN
  EXPECT_EQ(Pow(-10.0f, 41.0f), -INFINITY);
  EXPECT_EQ(Pow(NAN, 0.0f), 1.0f);            // a +0.0 exponent comes first
  EXPECT_TRUE(std::isnan(Pow(0.0f, -0.0f)));  // -0.0 does not: -0 * log2(0)
  EXPECT_EQ(BitsOf(Pow(-0.0f, 3.0f)), 0x80000000u);
  EXPECT_EQ(Pow(0.0f, -2.0f), INFINITY);
}

// A digest of the functions over fixed inputs: the same on i386 and x86-64.
TEST(Elementary, SameBitsOnEveryBuild) {
  uint32_t hash = 2166136261u;
  auto mix = [&hash](float f) { hash = (hash ^ BitsOf(f)) * 16777619u; };
  Random random;
  for (int i = 0; i < 20000; i++) {
    float a = random.Uniform(-100.0f, 100.0f), u = random.Uniform(-1.0f, 1.0f);
    float big = random.AnyFinite();
    for (float f :
         {Sin(a), Cos(a), Tan(a), Sin(big), Cos(big), SinDeg(a), CosDeg(a), TanDeg(a), Atan(a), Atan2(a, u),
          Asin(u), Acos(u), AtanDeg(big), Exp(a), Log(std::fabs(big)), Pow(std::fabs(a), u * 8), Sqrt(a)})
      mix(f);
    // Mixed as bits: an integer seen as a float may be a signalling NaN,
    // which an unoptimised i386 build quiets when it returns the float.
    hash = (hash ^ static_cast<uint32_t>(FloatToInt(big))) * 16777619u;
  }
  EXPECT_EQ(hash, 4030354000u);
}

constexpr uint32_t kPoison = 0xCDCDCDCDu;

Matrix34 Poisoned() {
  Matrix34 m;
  for (float& e : m.m) e = __builtin_bit_cast(float, kPoison);
  return m;
}

// p through m; the translation is ignored unless asked for.
void ExpectPoint(Matrix34 m, Vector3 p, float x, float y, float z, bool withTranslation = false) {
  if (!withTranslation) m.m[3] = m.m[7] = m.m[11] = 0;
  MatrixTransformPoint(&m, &p);
  EXPECT_NEAR(p.x, x, 1e-5f);
  EXPECT_NEAR(p.y, y, 1e-5f);
  EXPECT_NEAR(p.z, z, 1e-5f);
}

TEST(Matrices, Builders) {
  // Rotations write the 3x3 part only.
  Matrix34 m = Poisoned();
  MatrixRotationX(&m, 90);
  EXPECT_TRUE(BitsOf(m.m[3]) == kPoison && BitsOf(m.m[7]) == kPoison && BitsOf(m.m[11]) == kPoison);
  ExpectPoint(m, {0, 1, 0}, 0, 0, 1);
  MatrixRotationY(&m, 90);
  ExpectPoint(m, {0, 0, 1}, 1, 0, 0);
  MatrixRotationZ(&m, 90);
  ExpectPoint(m, {1, 0, 0}, 0, 1, 0);
}

TEST(Matrices, TransformsAndInverses) {
  Matrix34 m, inv;
  Vector3 angles = {10, 20, 30}, p = {1, 2, 3};
  MatrixFromEuler(&m, &angles);
  m.m[3] = 5, m.m[7] = -6, m.m[11] = 7;
  MatrixTransformPoint(&m, &p);
  MatrixInverseTransformPoint(&m, &p);
  MatrixInvertRigid(&m, &inv);
  MatrixTransformPoint(&m, &p);  // back where it was only if the inverse was right
  ExpectPoint(inv, p, 1, 2, 3, true);
}

TEST(Matrices, LookAt) {
  Matrix34 m;
  Vector3 eye = {0, 0, 10}, target = {0, 0, 0};
  CreateLookAtMatrix(&eye, &target, &m);
  const float straight[12] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 10};
  for (int i = 0; i < 12; i++) EXPECT_EQ(m.m[i], straight[i]) << i;
  // Any other direction: the third row is the unit vector from the target to the eye.
  eye = {3, 4, -2}, target = {-1, 0.5f, 6};
  CreateLookAtMatrix(&eye, &target, &m);
  Vector3 r2 = {m.m[8], m.m[9], m.m[10]}, d = {4, 3.5f, -8};
  EXPECT_NEAR(VectorDot(&r2, &d), VectorLength(&d), 1e-5f);

  // Straight down at the target, or up: quarter turns about x.
  for (float dy : {5.0f, -5.0f}) {
    eye = {1, 2 + dy, 3};
    target = {1, 2, 3};
    CreateLookAtMatrix(&eye, &target, &m);
    Matrix34 turn;
    MatrixRotationX(&turn, dy > 0 ? 90.0f : -90.0f);
    for (int i : {0, 1, 2, 4, 5, 6, 8, 9, 10}) EXPECT_EQ(m.m[i], turn.m[i]);
    EXPECT_EQ(m.m[7], 2 + dy);
  }
}

}  // namespace
