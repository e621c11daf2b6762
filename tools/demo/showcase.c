/* The showcase: three rows of four in front of a lit back wall. */
#include "showcase.h"

#include <stddef.h>

/* Places a generated mesh, gives it a little ambient light and a shade mode. */
Mesh* Place(Builder* b, Mesh* mesh, float x, float y, float z, uint32_t shade) {
  if (mesh == NULL) {
    b->failed = 1;
    return NULL;
  }
  ActivateMesh(mesh);
  SetMeshShadeMode(mesh, shade);
  SetMaterialColor(GetMeshDefaultMaterial(mesh), 0, 24, 24, 28);
  SetMeshModelPosition(mesh, x, y, z);
  return mesh;
}

void Show(Builder* b, Mesh* mesh) {
  if (mesh != NULL && AssignMeshToScene(b->scene, mesh, 0) == NULL) b->failed = 1;
}

/* A copy of the mesh's default material drawn in an alpha mode on both sides. */
void Translucent(Builder* b, Mesh* mesh, uint32_t mode, int32_t level) {
  if (mesh == NULL) return;
  Material* mat = CreateMaterial(GetMeshDefaultMaterial(mesh));
  if (mat == NULL) {
    b->failed = 1;
    return;
  }
  SetMaterialAlphaMode(mat, mode);
  SetMaterialAlphaLevel(mat, level);
  SetMaterial(mesh, mat, 2, 0);
  AssignMaterialToScene(b->scene, mat);
}

void Lights(Builder* b) {
  const float white[4] = {1.0f, 0.95f, 0.9f, 1.0f};
  const float cool[4] = {0.55f, 0.7f, 1.0f, 1.0f};
  const float warm[4] = {1.0f, 0.6f, 0.25f, 1.0f};
  const Vector3 sun = {-400, 400, -300}, centre = {0, 0, 0};
  const Vector3 right = {260, 60, -140}, low = {-60, -120, -40};
  Light* direct = CreateDirectLight(&sun, &centre, white, 0.55f, 0);
  Light* omni = CreateOmniLight(&right, cool, 0.7f, 0, 0, 0);
  Light* faded = CreateOmniLight(&low, warm, 0.9f, 60, 220, 0);
  Light* all[3] = {direct, omni, faded};
  for (int i = 0; i < 3; i++) {
    if (all[i] == NULL) {
      b->failed = 1;
      continue;
    }
    SetLightStatus(all[i], 1, all[i] == faded);
    AssignLightToScene(b->scene, all[i], 1);
  }
}

Scene* CreateShowcase(void) {
  Builder b = {CreateScene(), 0};
  if (b.scene == NULL) return NULL;
  const Vector3 wide = {1.0f, 0.75f, 1.0f}, flat = {1.0f, 1.0f, 0.5f};

  /* Back wall: a grid, so the lights show as a gradient. */
  Show(&b, Place(&b, GridCreate(720, &wide, 12, 16, 0xB0B0B0), 0, 0, 110, kGouraud));

  /* Top row. */
  Show(&b, Place(&b, SphereCreate(32, NULL, 16, 24, 0xE04040), -140, 85, 0, kGouraud));
  Mesh* torus = Place(&b, TorusCreate(26, 9, NULL, 12, 24, 0xE0C040), -45, 85, 0, kGouraud);
  if (torus) SetMeshModelOrientation(torus, -60, 0, 0);
  Show(&b, torus);
  Mesh* chcube = Place(&b, ChCubeCreate(50, 8, NULL, 3, 0x40D060), 45, 85, 0, kFlat);
  if (chcube) SetMeshModelOrientation(chcube, 30, 40, 0);
  Show(&b, chcube);
  Mesh* tube = Place(&b, TubeCreate(28, 17, 40, NULL, 24, 0x5080E0), 140, 85, 0, kGouraud);
  if (tube) SetMeshModelOrientation(tube, -40, 0, 20);
  Show(&b, tube);

  /* Middle row: a cube, a hierarchy, a cone and a closed hemisphere. */
  Mesh* cube = Place(&b, CubeCreate(48, NULL, 0xD0D0D0), -140, 0, 0, kFlat);
  if (cube) SetMeshModelOrientation(cube, 25, 35, 0);
  Show(&b, cube);
  Mesh* post = Place(&b, CylinderCreate(14, 14, 56, NULL, 16, 0x909098), -45, -5, 0, kGouraud);
  Mesh* halo = Place(&b, TorusCreate(30, 5, NULL, 8, 24, 0x40C0E0), 0, 8, 0, kGouraud);
  Mesh* knob = Place(&b, SphereCreate(12, NULL, 10, 16, 0xF08020), 0, 40, 0, kGouraud);
  if (post && halo && knob) {
    SetMeshModelOrientation(post, 0, 0, -20);
    if (!AttachChildToNode(post, halo) || !AttachChildToNode(post, knob)) b.failed = 1;
  } else {
    b.failed = 1;
  }
  Show(&b, post);
  Show(&b, Place(&b, CylinderCreate(30, 0, 60, NULL, 24, 0xF0A040), 45, -5, 0, kGouraud));
  Mesh* dome = Place(&b, HemisphereCreate(32, NULL, 8, 24, 0xA060D0, 0), 140, -15, 0, kGouraud);
  if (dome) SetMeshModelOrientation(dome, -25, 0, 0);
  Show(&b, dome);

  /* Bottom row: added, subtracted and blended materials, and a billboard. */
  Mesh* glow = Place(&b, DiskCreate(36, NULL, 24, 0x803010), -140, -85, -10, kGouraud);
  Translucent(&b, glow, kAdded, 255);
  Show(&b, glow);
  Mesh* ring = Place(&b, RingCreate(36, 20, NULL, 24, 0xFFFFFF), -45, -85, -10, kFlat);
  Translucent(&b, ring, kSubtracted, 255);
  Show(&b, ring);
  Show(&b, Place(&b, SphereCreate(20, NULL, 12, 16, 0xE03030), 35, -80, 30, kGouraud));
  Mesh* glass = Place(&b, CubeCreate(46, &flat, 0x60A0FF), 55, -85, -20, kFlat);
  if (glass) SetMeshModelOrientation(glass, 0, 20, 0);
  Translucent(&b, glass, kBlended, 128);
  Show(&b, glass);
  Mesh* sign = Place(&b, BillboardCreate(56, NULL, 0xF0E060), 140, -85, 0, kUnlit);
  if (sign) {
    SetMeshModelOrientation(sign, 0, 70, 30);
    SetMeshBillboardMode(sign, 16);
  }
  Show(&b, sign);

  Lights(&b);
  return Finish(&b, 40, -380);
}

Scene* Finish(Builder* b, float eyeY, float eyeZ) {
  const Vector3 eye = {0, eyeY, eyeZ}, target = {0, 0, 0};
  Camera* camera = CreateCamera(&eye, &target, 0, 60, 10);
  if (camera == NULL || !AssignCameraToScene(b->scene, camera)) b->failed = 1;
  if (b->failed) {
    DeleteWholeScene(b->scene);
    return NULL;
  }
  return b->scene;
}
