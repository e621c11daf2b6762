// Arithmetic primitives: conversions, elementary functions, vectors and matrices.
// All results are computed the same way on every build (SSE2 doubles where
// extra precision is wanted, never the compiler's excess precision), so the
// i386 and x86-64 libraries produce the same bits.
#pragma once
#include <stdint.h>

#include "engine/fp.h"
#include "engine3d.h"

namespace e3d {

// Load-time constants (computed by the library's load initialiser).
extern float Pi;
extern float DegToRad;
extern float RadToDeg;
inline constexpr float Epsilon = 0.0001f;

// Float to integer, rounded to nearest (ties to even) as a 64-bit integer of
// which the low 32 bits are kept: values beyond 32 bits wrap, never saturate.
// The pixel paths convert all the time, so values well inside 32 bits take
// one conversion (the SSE2 instruction on x86), which rounds the same way;
// the rest, and NaN, take the full routine.
int32_t FloatToIntWide(double x);
inline int32_t FloatToInt(double x) {
  constexpr double kDirect = 1073741824.0;  // 2^30
  return x > -kDirect && x < kDirect ? fp::NearestInt(x) : FloatToIntWide(x);
}
int32_t FloatToInt32(double x);           // rounded in the current (nearest) mode
int32_t FloatRoundAwayFromZero(float x);  // ceil for sign clear, floor for sign set
int32_t FloatFloor(float x);

// Elementary functions, float in and float out; radians unless named Deg.
float Sqrt(float x);
float InvSqrt(float x);
float Sin(float x);
float Cos(float x);
float Tan(float x);
float SinDeg(float x);
float CosDeg(float x);
float TanDeg(float x);
float Atan(float x);
float AtanDeg(float x);
float Atan2(float x, float y);  // angle of the point (x, y)
float Asin(float x);
float AsinDeg(float x);
float Acos(float x);
float AcosDeg(float x);
float Exp(float x);
float Log(float x);
float Pow(float x, float y);
float Hypot(float a, float b);
// Sine and cosine of one angle in radians at once (the matrix builders use it).
void SinCos(float x, float* s, float* c);

// The same functions in double, for callers that chain several operations
// before rounding once (where the x87 unit would keep extended precision).
// Radians; every finite argument is reduced exactly.
double SinD(double x);
double CosD(double x);
double TanD(double x);
void SinCosD(double x, double* s, double* c);
double AtanD(double x);
double Atan2D(double x, double y);  // angle of the point (x, y)
double ExpD(double x);
double LogD(double x);

// Vectors.
float VectorLength(const Vector3* v);
float VectorInvLength(const Vector3* v);
void VectorNormalize(Vector3* v);
void VectorCross(const Vector3* a, const Vector3* b, Vector3* out);
float VectorDot(const Vector3* a, const Vector3* b);
int32_t VectorExceeds(const Vector3* a, const Vector3* b);

// Matrices (row by row, p' = R p + T).
void MatrixIdentity(Matrix34* m);
void MatrixTransformPoint(const Matrix34* m, Vector3* v);
void MatrixInverseTransformPoint(const Matrix34* m, Vector3* v);
void MatrixFromEuler(Matrix34* m, const Vector3* anglesDeg);
void MatrixRotationX(Matrix34* m, float angleDeg);
void MatrixRotationY(Matrix34* m, float angleDeg);
void MatrixRotationZ(Matrix34* m, float angleDeg);
void MatrixMultiply3x3(const Matrix34* a, const Matrix34* b, Matrix34* out);
void MatrixMultiplyRelative(const Matrix34* a, const Matrix34* b, Matrix34* out);
void MatrixInvertRigid(const Matrix34* src, Matrix34* dst);
void QuaternionToMatrix(const Quaternion* q, Matrix34* m);

}  // namespace e3d
