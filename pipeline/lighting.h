// Vertex lighting: a mesh's enabled lights are brought into its model space
// once per mesh, then summed per polygon (flat) or per corner (Gouraud) into
// the polygon's colour words. Everything runs on untransformed vertices,
// plane normals and vertex normals.
//
// A lit transform variant calls, per mesh: SetupMeshLights once (after the
// world matrix is current and the lights' saved position and target were
// taken for this draw); per kept polygon, after its facing bit 0x80 and its
// material are chosen: ShadeLitPolygon, which uses the mesh's light list,
// vertices (words 0-2), vertex normals (for Gouraud) and the polygon's plane.
#pragma once
#include <stdint.h>

#include "engine3d.h"
#include "engine/math.h"
#include "objects/material.h"

namespace e3d {

// Shade modes, renderFlags & 7.
inline constexpr uint32_t kShadeMask = 0x7;
inline constexpr uint32_t kShadeUnlit = 1;
inline constexpr uint32_t kShadeFlat = 3;
inline constexpr uint32_t kShadeGouraud = 7;

// Brings every enabled light of the mesh's list into its model space (through
// worldMatrix and pivot): localPosition for types 2, 3, 19; also
// localDirection for types 4 and 20. Other types keep their earlier values.
void SetupMeshLights(Mesh* mesh);

// Sums the listed lights at corner 0 against the plane normal and stores the
// 5:5:5 colour in colors[0].
void LightPolygonFlat(const Mesh* mesh, MeshPolygon* polygon, uint32_t renderFlags,
                      const Material* material);

// Sums the listed lights at each corner against its vertex normal and stores
// the 8:8:8 colours 0x00RRGGBB in colors[0..2]. Between BeginCornerMemo and
// EndCornerMemo (one mesh walk, in which lights, vertices and materials stay
// as they are) a corner seen again takes the colour it got before.
void LightPolygonCorners(const Mesh* mesh, MeshPolygon* polygon, uint32_t renderFlags,
                         const Material* material);
void BeginCornerMemo();
void EndCornerMemo();

// The flat colour of an unlit polygon: colour 0 + 1 + 2 packed 5:5:5, or white
// when a texture other than stage 2 alone supplies the colour.
uint32_t UnlitPolygonColor(const Material* material, uint32_t renderFlags);

// The colour of a polygon of a mesh without lights, lit from the camera at
// eye (camera position in model space); stored in all three colour words.
void HeadlightPolygon(MeshPolygon* polygon, uint32_t renderFlags, const Material* material,
                      const Vector3* eye);

// Colours a kept polygon of a lit variant: headlight from eye (the camera
// position in model space) when the light list is empty, else by shade mode.
// Returns renderFlags, turned flat for the headlight.
uint32_t ShadeLitPolygon(const Mesh* mesh, MeshPolygon* polygon, uint32_t renderFlags,
                         const Material* material, const Vector3* eye);

// A colour channel: rounded to nearest, clamped to 0..255.
inline uint32_t ColorChannel(double value) {
  const int32_t c = FloatToInt(value);
  return c < 0 ? 0u : c > 255 ? 255u : static_cast<uint32_t>(c);
}
inline uint32_t PackColor555(uint32_t r, uint32_t g, uint32_t b) {
  return ((r & 0xF8) << 7) | ((g & 0xF8) << 2) | (b >> 3);
}

// True when the texture-stage bits leave the material's colours as the base.
inline bool UsesMaterialColor(uint32_t renderFlags) {
  uint32_t stages = renderFlags & 0x7800000u;
  return stages == 0 || stages == 0x2000000u;
}

// What the light intensity scales in a channel: the material's colour 1, or
// white when a texture supplies the base colour.
inline double LitScale(const Material* material, uint32_t renderFlags, int channel) {
  return UsesMaterialColor(renderFlags) ? static_cast<double>(material->colors[1][channel]) : 255.0;
}

}  // namespace e3d
