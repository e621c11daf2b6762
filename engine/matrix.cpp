// Matrix kernel. Each builder computes its elements in double into a local
// matrix and stores them once, so an output may share storage with an input.
#include "engine/fp.h"
#include "engine/math.h"

namespace e3d {

namespace {

// A linear part in double, row by row.
struct Rotation {
  double e[3][3];
};

double At(const Matrix34* m, int row, int col) { return m->m[4 * row + col]; }

void StoreRotation(Matrix34* m, const Rotation& r) {
  for (int row = 0; row < 3; row++)
    for (int col = 0; col < 3; col++) m->m[4 * row + col] = static_cast<float>(r.e[row][col]);
}

// b.R a.R: a applied first.
Rotation Product(const Matrix34* a, const Matrix34* b) {
  Rotation r;
  for (int row = 0; row < 3; row++)
    for (int col = 0; col < 3; col++)
      r.e[row][col] = At(b, row, 0) * At(a, 0, col) + At(b, row, 1) * At(a, 1, col) +
                      At(b, row, 2) * At(a, 2, col);
  return r;
}

void SinCosDeg(float angleDeg, double* s, double* c) {
  SinCosD(static_cast<double>(angleDeg) * DegToRad, s, c);
}

}  // namespace

void MatrixIdentity(Matrix34* m) {
  for (float& e : m->m) e = 0.0f;
  m->m[0] = m->m[5] = m->m[10] = 1.0f;
}

void MatrixTransformPoint(const Matrix34* m, Vector3* v) {
  double x = v->x, y = v->y, z = v->z;
  double out[3];
  for (int row = 0; row < 3; row++)
    out[row] = At(m, row, 0) * x + At(m, row, 1) * y + At(m, row, 2) * z + At(m, row, 3);
  v->x = static_cast<float>(out[0]);
  v->y = static_cast<float>(out[1]);
  v->z = static_cast<float>(out[2]);
}

void MatrixInverseTransformPoint(const Matrix34* m, Vector3* v) {
  double d[3] = {v->x - At(m, 0, 3), v->y - At(m, 1, 3), v->z - At(m, 2, 3)};
  double out[3];
  for (int col = 0; col < 3; col++)
    out[col] = At(m, 0, col) * d[0] + At(m, 1, col) * d[1] + At(m, 2, col) * d[2];
  v->x = static_cast<float>(out[0]);
  v->y = static_cast<float>(out[1]);
  v->z = static_cast<float>(out[2]);
}

// Rz(z) Ry(y) Rx(x): about x first, then y, then z.
void MatrixFromEuler(Matrix34* m, const Vector3* anglesDeg) {
  double sx, cx, sy, cy, sz, cz;
  SinCosDeg(anglesDeg->x, &sx, &cx);
  SinCosDeg(anglesDeg->y, &sy, &cy);
  SinCosDeg(anglesDeg->z, &sz, &cz);
  Rotation r = {{{cy * cz, sx * sy * cz - cx * sz, cx * sy * cz + sx * sz},
                 {cy * sz, sx * sy * sz + cx * cz, cx * sy * sz - sx * cz},
                 {-sy, sx * cy, cx * cy}}};
  StoreRotation(m, r);
}

void MatrixRotationX(Matrix34* m, float angleDeg) {
  double s, c;
  SinCosDeg(angleDeg, &s, &c);
  StoreRotation(m, Rotation{{{1.0, 0.0, 0.0}, {0.0, c, -s}, {0.0, s, c}}});
}

void MatrixRotationY(Matrix34* m, float angleDeg) {
  double s, c;
  SinCosDeg(angleDeg, &s, &c);
  StoreRotation(m, Rotation{{{c, 0.0, s}, {0.0, 1.0, 0.0}, {-s, 0.0, c}}});
}

void MatrixRotationZ(Matrix34* m, float angleDeg) {
  double s, c;
  SinCosDeg(angleDeg, &s, &c);
  StoreRotation(m, Rotation{{{c, -s, 0.0}, {s, c, 0.0}, {0.0, 0.0, 1.0}}});
}

void MatrixMultiply3x3(const Matrix34* a, const Matrix34* b, Matrix34* out) {
  StoreRotation(out, Product(a, b));
}

// Object to view: a is the object's world matrix, b the viewer's orientation
// and world position.
void MatrixMultiplyRelative(const Matrix34* a, const Matrix34* b, Matrix34* out) {
  Rotation r = Product(a, b);
  double d[3];
  for (int k = 0; k < 3; k++) d[k] = At(a, k, 3) - At(b, k, 3);
  double t[3];
  for (int row = 0; row < 3; row++)
    t[row] = At(b, row, 0) * d[0] + At(b, row, 1) * d[1] + At(b, row, 2) * d[2];
  StoreRotation(out, r);
  for (int row = 0; row < 3; row++) out->m[4 * row + 3] = static_cast<float>(t[row]);
}

void MatrixInvertRigid(const Matrix34* src, Matrix34* dst) {
  Rotation r;
  double t[3];
  for (int row = 0; row < 3; row++) {
    for (int col = 0; col < 3; col++) r.e[row][col] = At(src, col, row);
    t[row] = -(At(src, 0, row) * At(src, 0, 3) + At(src, 1, row) * At(src, 1, 3) +
               At(src, 2, row) * At(src, 2, 3));
  }
  StoreRotation(dst, r);
  for (int row = 0; row < 3; row++) dst->m[4 * row + 3] = static_cast<float>(t[row]);
}

// Need not be a unit quaternion: scaled by 2 / |q|^2, and the zero
// quaternion gives the identity.
void QuaternionToMatrix(const Quaternion* q, Matrix34* m) {
  double x = q->x, y = q->y, z = q->z, w = q->w;
  double n = x * x + y * y + z * z + w * w;
  double s = n == 0.0 ? 1.0 : 2.0 / n;
  Rotation r = {{{1.0 - s * (y * y + z * z), s * (x * y - z * w), s * (x * z + y * w)},
                 {s * (x * y + z * w), 1.0 - s * (x * x + z * z), s * (y * z - x * w)},
                 {s * (x * z - y * w), s * (y * z + x * w), 1.0 - s * (x * x + y * y)}}};
  StoreRotation(m, r);
  m->m[3] = m->m[7] = m->m[11] = 0.0f;
}

}  // namespace e3d
