// The per-light routines of the vertex lighting and their dispatch tables.
// Each routine adds one light's contribution to the module-wide sums; the
// tables, indexed by the light's type bits, keep every branch on light kind
// and facing out of the per-light loop.
#pragma once
#include <stdint.h>

#include "engine3d.h"
#include "objects/light.h"

namespace e3d {

// Working state of one polygon (flat) or one corner (Gouraud).
struct LightSums {
  float sumRed, sumGreen, sumBlue;
  const Light* light;           // the light being summed
  const MeshPolygon* polygon;   // plane normal and distance of the flat forms
  const MeshVertex* vertex;     // P: the model-space position lit
};
extern LightSums lighting;

// Flat forms read the current light, polygon and vertex; corner forms take the
// corner's vertex normal in place of the plane normal.
using FlatRoutine = void (*)();
using CornerRoutine = void (*)(const Vector3* normal);

void NoLight();
void NoLight(const Vector3* normal);

void OmniFlat();
void OmniFlatBack();
void OmniAttenFlat();
void OmniAttenFlatBack();
void DirectFlat();
void DirectFlatBack();
void DirectSidedFlat();
void DirectSidedFlatBack();

void OmniCorner(const Vector3* normal);
void OmniCornerBack(const Vector3* normal);
void OmniAttenCorner(const Vector3* normal);
void OmniAttenCornerBack(const Vector3* normal);
void DirectCorner(const Vector3* normal);
void DirectCornerBack(const Vector3* normal);
void DirectSidedCorner(const Vector3* normal);
void DirectSidedCornerBack(const Vector3* normal);

template <class R>
struct LightTable {
  R routine[kLightTypeMask + 1];
  constexpr R operator[](uint32_t type) const { return routine[type]; }
};

// Types 2 and 18 omni, 3 and 19 attenuated omni, 4 and 5 direct, 20 and 21
// one-sided direct; every other type lights nothing.
template <class R>
constexpr LightTable<R> MakeLightTable(R none, R omni, R omniAtten, R direct, R directSided) {
  LightTable<R> t{};
  for (uint32_t i = 0; i <= kLightTypeMask; i++) t.routine[i] = none;
  t.routine[2] = t.routine[18] = omni;
  t.routine[3] = t.routine[19] = omniAtten;
  t.routine[4] = t.routine[5] = direct;
  t.routine[20] = t.routine[21] = directSided;
  return t;
}

inline constexpr LightTable<FlatRoutine> LightFlatTable =
    MakeLightTable<FlatRoutine>(NoLight, OmniFlat, OmniAttenFlat, DirectFlat, DirectSidedFlat);
inline constexpr LightTable<FlatRoutine> LightFlatBackTable = MakeLightTable<FlatRoutine>(
    NoLight, OmniFlatBack, OmniAttenFlatBack, DirectFlatBack, DirectSidedFlatBack);
inline constexpr LightTable<CornerRoutine> LightCornerTable = MakeLightTable<CornerRoutine>(
    NoLight, OmniCorner, OmniAttenCorner, DirectCorner, DirectSidedCorner);
inline constexpr LightTable<CornerRoutine> LightCornerBackTable = MakeLightTable<CornerRoutine>(
    NoLight, OmniCornerBack, OmniAttenCornerBack, DirectCornerBack, DirectSidedCornerBack);

}  // namespace e3d
