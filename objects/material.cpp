// Materials: creation, colours, alpha, modes and names.
#include "objects/material.h"

#include "engine/memory.h"
#include "engine3d.h"

namespace e3d {

int32_t materialCounter = 0;

namespace {

inline void SetMasked(uint32_t& flags, uint32_t mask, uint32_t value) {
  flags = (flags & ~mask) | (value & mask);
}

}  // namespace
}  // namespace e3d

using namespace e3d;

// The copy keeps the source's old name; the source takes the new one.
E3D_API Material* E3D_CALL CreateMaterial(Material* source) {
  Material* mat = Allocate<Material>();
  if (mat != nullptr) MemoryCopy(mat, source, sizeof(Material));
  WriteGeneratedName(source->name, "Material", materialCounter);
  materialCounter = static_cast<int32_t>(static_cast<uint32_t>(materialCounter) + 1);
  return mat;
}

E3D_API int32_t E3D_CALL DeleteMaterial(Material* mat) {
  return mat != nullptr ? FreeMemory(mat) : 0;
}

// Clamped after the store, so a NaN stays as given.
E3D_API void E3D_CALL SetMaterialColor(Material* mat, int32_t index, float red, float green,
                                       float blue) {
  if (static_cast<uint32_t>(index) > 2) return;
  float* c = mat->colors[index];
  c[0] = red;
  c[1] = green;
  c[2] = blue;
  c[3] = 255.0f;
  for (int i = 0; i < 3; i++) {
    if (c[i] < 0.0f) c[i] = 0.0f;
    if (c[i] > 255.0f) c[i] = 255.0f;
  }
}

// Any index but 0-2 returns the record itself, as it always has.
E3D_API float* E3D_CALL GetMaterialColor(Material* mat, int32_t index) {
  if (static_cast<uint32_t>(index) > 2) return reinterpret_cast<float*>(mat);
  return mat->colors[index];
}

E3D_API void E3D_CALL SetMaterialColorOp(Material* mat, uint16_t op, int32_t enable) {
  mat->colorOp = op;
  SetMasked(mat->flags, kMaterialColorOpOn, enable ? kMaterialColorOpOn : 0);
}

E3D_API void E3D_CALL SetMaterialAlphaLevel(Material* mat, int32_t level) {
  mat->alphaLevel = static_cast<uint16_t>(level < 0 ? 0 : level > 255 ? 255 : level);
}

E3D_API int32_t E3D_CALL GetMaterialAlphaLevel(const Material* mat) { return mat->alphaLevel; }

E3D_API void E3D_CALL SetMaterialAlphaMode(Material* mat, uint32_t mode) {
  mat->alphaMode = static_cast<uint16_t>(mode > 3 ? 0 : mode);
}

E3D_API int32_t E3D_CALL GetMaterialAlphaMode(const Material* mat) { return mat->alphaMode; }

// The option bit always follows the argument; the mode only when one is given.
E3D_API void E3D_CALL SetMaterialRenderMode(Material* mat, uint32_t mode) {
  SetMasked(mat->flags, kRenderOption, mode);
  if (mode & kMaterialRenderMask) SetMasked(mat->flags, kMaterialRenderMask, mode);
}

E3D_API uint32_t E3D_CALL GetMaterialRenderMode(const Material* mat) {
  return mat->flags & (kMaterialRenderMask | kRenderOption);
}

E3D_API void E3D_CALL SetMaterialShadeMode(Material* mat, uint32_t mode) {
  if (mode & kShadeModeMask) SetMasked(mat->flags, kShadeModeMask, mode);
}

E3D_API uint32_t E3D_CALL GetMaterialShadeMode(const Material* mat) {
  return mat->flags & kShadeModeMask;
}

E3D_API void E3D_CALL SetMaterialCullMode(Material* mat, uint32_t mode) {
  if (mode & kCullModeMask) SetMasked(mat->flags, kCullModeMask, mode);
}

E3D_API uint32_t E3D_CALL GetMaterialCullMode(const Material* mat) {
  return mat->flags & kCullModeMask;
}

// No length limit: a name longer than the field runs over into the record.
E3D_API char* E3D_CALL SetMaterialName(Material* mat, const char* name) {
  if (mat == nullptr || name == nullptr) return nullptr;
  return StringCopy(mat->name, name);
}
