// The per-light routines. Products and tests are made in double and each sum
// is rounded once per light, as it is stored.
#include "pipeline/lighting_routines.h"

#include "engine/math.h"

namespace e3d {

LightSums lighting;

namespace {

void AddLight(double intensity) {
  const float* c = lighting.light->color;
  lighting.sumRed = static_cast<float>(lighting.sumRed + intensity * c[0]);
  lighting.sumGreen = static_cast<float>(lighting.sumGreen + intensity * c[1]);
  lighting.sumBlue = static_cast<float>(lighting.sumBlue + intensity * c[2]);
}

double Dot(const Vector3& a, const Vector3& b) {
  return static_cast<double>(a.x) * b.x + static_cast<double>(a.y) * b.y +
         static_cast<double>(a.z) * b.z;
}

Vector3 VertexPosition() {
  const MeshVertex* p = lighting.vertex;
  return Vector3{p->x, p->y, p->z};
}

Vector3 PlaneNormal() {
  const float* plane = lighting.polygon->plane;
  return Vector3{plane[0], plane[1], plane[2]};
}

// From the light to P for the front side, from P to the light for the back.
Vector3 LightRay(bool back) {
  Vector3 p = VertexPosition();
  const Vector3& l = lighting.light->localPosition;
  if (back) return Vector3{l.x - p.x, l.y - p.y, l.z - p.z};
  return Vector3{p.x - l.x, p.y - l.y, p.z - l.z};
}

void Omni(const Vector3& n, bool back) {
  Vector3 v = LightRay(back);
  double s = Dot(v, n);
  if (s >= 0) AddLight(static_cast<double>(VectorInvLength(&v)) * lighting.light->intensity * s);
}

// Plain cosine inside near, smooth step (3 - 2t) t^2 down to far. near >= far
// divides by zero or a negative span: not guarded.
void OmniAtten(const Vector3& n, bool back) {
  const Light* light = lighting.light;
  Vector3 v = LightRay(back);
  double s = Dot(v, n);
  if (!(s >= 0)) return;
  double r = VectorLength(&v);
  double farDistance = light->farAttenuation, nearDistance = light->nearAttenuation;
  if (!(r < farDistance)) return;
  double i = s / r;
  if (!(r <= nearDistance)) {
    double t = (farDistance - r) / (farDistance - nearDistance);
    i = i * (3.0 - 2.0 * t) * t * t;
  }
  AddLight(i * light->intensity);
}

void Direct(const Vector3& n, bool back) {
  double s = Dot(lighting.light->localDirection, n);
  double k = lighting.light->intensity;
  if (!back && s >= 0) AddLight(s * k);
  if (back && s < 0) AddLight(-(s * k));
}

// Signed distance of the light from the polygon's plane.
double PlaneSide() {
  return Dot(lighting.light->localPosition, PlaneNormal()) + lighting.polygon->plane[3];
}

// The same for a corner: the plane through P normal to N.
double CornerSide(const Vector3& n) {
  return Dot(n, lighting.light->localPosition) - Dot(n, VertexPosition());
}

}  // namespace

void NoLight() {}
void NoLight(const Vector3*) {}

void OmniFlat() { Omni(PlaneNormal(), false); }
void OmniFlatBack() { Omni(PlaneNormal(), true); }
void OmniAttenFlat() { OmniAtten(PlaneNormal(), false); }
void OmniAttenFlatBack() { OmniAtten(PlaneNormal(), true); }
void DirectFlat() { Direct(PlaneNormal(), false); }
void DirectFlatBack() { Direct(PlaneNormal(), true); }
void DirectSidedFlat() {
  if (PlaneSide() < 0) Direct(PlaneNormal(), false);
}
void DirectSidedFlatBack() {
  if (PlaneSide() >= 0) Direct(PlaneNormal(), true);
}

void OmniCorner(const Vector3* normal) { Omni(*normal, false); }
void OmniCornerBack(const Vector3* normal) { Omni(*normal, true); }
void OmniAttenCorner(const Vector3* normal) { OmniAtten(*normal, false); }
void OmniAttenCornerBack(const Vector3* normal) { OmniAtten(*normal, true); }
void DirectCorner(const Vector3* normal) { Direct(*normal, false); }
void DirectCornerBack(const Vector3* normal) { Direct(*normal, true); }
void DirectSidedCorner(const Vector3* normal) {
  if (CornerSide(*normal) < 0) Direct(*normal, false);
}
void DirectSidedCornerBack(const Vector3* normal) {
  if (CornerSide(*normal) >= 0) Direct(*normal, true);
}

}  // namespace e3d
