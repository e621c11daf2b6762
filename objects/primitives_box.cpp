// Generators made of flat quads between corners (billboard, cube), and the
// cube with rounded edges.
#include "engine/math.h"
#include "objects/mesh.h"
#include "objects/primitives.h"

using namespace e3d;

static int32_t billboardCount, cubeCount, chCubeCount;

// A face shows the whole texture; the cube's sides upright when seen from outside.
static void SetWholeTexture(Mesh* mesh, int32_t slot) {
  SetMeshQuadTexCoords(mesh, slot, 0.0f, 0.0f, 1.0f, 0.0f, 1.0f, 1.0f, 0.0f, 1.0f);
}

// A mesh of quads between corners at -1, 0 or +1 times half the size per
// axis; quad f goes to slot 2 f in smoothing group f.
static Mesh* CreateCornerMesh(float size, const Vector3* scale, const int8_t (*corners)[3], int32_t count,
                              const int32_t (*quads)[4], int32_t quadCount, uint32_t color, const char* base,
                              int32_t* counter) {
  if (!(size > 0.0f)) return nullptr;
  const Vector3 k = GeneratorScale(scale);
  Mesh* mesh = CreateGeneratedMesh(count, 2 * quadCount, color);
  if (mesh == nullptr) return nullptr;
  const float half = size * 0.5f;
  auto at = [half](int8_t sign, float axis) { return sign == 0 ? 0.0f : (sign > 0 ? half : -half) * axis; };
  for (int32_t i = 0; i < count; i++)
    SetMeshVertex(mesh, i, at(corners[i][0], k.x), at(corners[i][1], k.y), at(corners[i][2], k.z));
  for (int32_t f = 0; f < quadCount; f++) {
    const int32_t* q = quads[f];
    SetMeshQuadPolygon(mesh, 2 * f, q[0], q[1], q[2], q[3], color, uint32_t(f));
    SetWholeTexture(mesh, 2 * f);
  }
  return FinishGeneratedMesh(mesh, base, counter);
}

// The billboard lies in the plane z = 0, corners from the top left clockwise.
static const int8_t kBillboardCorners[4][3] = {{-1, 1, 0}, {1, 1, 0}, {1, -1, 0}, {-1, -1, 0}};
static const int32_t kBillboardQuad[1][4] = {{0, 1, 2, 3}};

// The cube's corners 0-3 are the face at -z from the top left, 4-7 the same at +z.
static const int8_t kCubeCorners[8][3] = {{-1, 1, -1}, {1, 1, -1}, {1, -1, -1}, {-1, -1, -1},
                                          {-1, 1, 1},  {1, 1, 1},  {1, -1, 1},  {-1, -1, 1}};
static const int32_t kCubeFaces[6][4] = {{0, 1, 2, 3}, {1, 5, 6, 2}, {5, 4, 7, 6},
                                         {4, 0, 3, 7}, {4, 5, 1, 0}, {3, 2, 6, 7}};

E3D_API Mesh* E3D_CALL BillboardCreate(float size, const Vector3* scale, uint32_t color) {
  return CreateCornerMesh(size, scale, kBillboardCorners, 4, kBillboardQuad, 1, color, "Billboard",
                          &billboardCount);
}

E3D_API Mesh* E3D_CALL CubeCreate(float size, const Vector3* scale, uint32_t color) {
  return CreateCornerMesh(size, scale, kCubeCorners, 8, kCubeFaces, 6, color, "Cube", &cubeCount);
}

// The rounded cube is a sphere of radius chamfer cut into eight octants that
// sit at the corners of an inner cube of half edge e = size / 2 - chamfer.
// It is built as 2 * segments + 2 loops from top to bottom: the four corners
// of the flat top, segments loops down to the top of the flat sides, as many
// from their bottom down, and the four corners of the flat bottom. Every loop
// but the first and last has four sections (one per vertical edge, from +x+z
// round to +x-z) of segments + 1 vertices. The flat faces are smoothing group
// 1, the rounding group 0. The sides' texture wraps round once and runs down
// the profile, both by length; top and bottom show the whole texture.
E3D_API Mesh* E3D_CALL ChCubeCreate(float size, float chamfer, const Vector3* scale, int32_t segments,
                                    uint32_t color) {
  if (!(size > 0.0f) || segments < 1 || !(chamfer > 0.0f) || !(size - 2.0f * chamfer > 0.0f))
    return nullptr;
  const Vector3 k = GeneratorScale(scale);
  const int64_t n = segments;
  Mesh* mesh = CreateGeneratedMesh((n + 1) * n * 8 + 8, (n + 1) * n * 16 + 12, color);
  if (mesh == nullptr) return nullptr;
  const double e = double(size) * 0.5 - chamfer, c = chamfer;
  const double stepAngle = 90.0 / double(n);
  double chord, unused;  // of one step around a unit circle
  DegreesCosSin(stepAngle * 0.5, &unused, &chord);
  chord *= 2.0;
  const double profile = 2.0 * double(n) * chord * c + 2.0 * e;
  const BandStyle rounded = {color, kCurvedGroup, kCurvedGroup, false};
  const BandStyle sides = {color, kCurvedGroup, kFlatGroup, false};
  Loop previous = {};
  int32_t first = 0, slot = 0;
  for (int32_t level = 0; level <= 2 * segments + 1; level++) {
    const bool top = level <= segments;
    const int32_t down = top ? level : level - segments - 1;  // steps from the top or the middle
    const bool pole = level == 0 || level == 2 * segments + 1;
    double cosLat = 0.0, sinLat = top ? 1.0 : -1.0;
    if (!pole) DegreesCosSin(top ? 90.0 - down * stepAngle : -down * stepAngle, &cosLat, &sinLat);
    const double ring = c * cosLat, y = (top ? e : -e) + c * sinLat;
    const int32_t points = pole ? 1 : segments + 1;
    for (int32_t q = 0; q < 4; q++) {
      const double cx = (q == 0 || q == 3) ? e : -e, cz = q < 2 ? e : -e;
      for (int32_t t = 0; t < points; t++) {
        double cosLon, sinLon;
        DegreesCosSin(90.0 * q + t * stepAngle, &cosLon, &sinLon);
        SetMeshVertex(mesh, first + q * points + t, float((cx + ring * cosLon) * k.x), float(y * k.y),
                      float((cz + ring * sinLon) * k.z));
      }
    }
    const double along = (top ? 0.0 : double(n) * chord * c + 2.0 * e) + double(down) * chord * c;
    const float arcStep = float(ring * chord);
    const Loop loop = {first, 4, points, float(along / profile), 0.0f, arcStep,
                       float(double(n) * arcStep + 2.0 * e)};
    if (level > 0) SetBand(mesh, &slot, previous, loop, level == segments + 1 ? sides : rounded);
    previous = loop;
    first += 4 * points;
  }
  // Top corners are vertices 0-3, bottom corners the last four, both in
  // section order +x+z, -x+z, -x-z, +x-z.
  const int32_t b = first - 4;
  SetMeshQuadPolygon(mesh, slot, 1, 0, 3, 2, color, kFlatGroup);
  SetWholeTexture(mesh, slot);
  SetMeshQuadPolygon(mesh, slot + 2, b + 2, b + 3, b, b + 1, color, kFlatGroup);
  SetWholeTexture(mesh, slot + 2);
  return FinishGeneratedMesh(mesh, "Cube", &chCubeCount);
}
