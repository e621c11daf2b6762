/* The smallest host: one flat triangle drawn straight into a pixel buffer
   with DrawTriangle2D, no scene, camera or light. Writes triangle.ppm. */
#include <string.h>

#include "engine3d.h"
#include "example.h"

enum { kWidth = 320, kHeight = 240 };
static uint16_t pixels[kWidth * kHeight];

int main(void) {
  InitEngine3D();

  /* The viewport draws into our own buffer. */
  Viewport* vp = CreateExampleViewport(pixels, kWidth, kHeight, 0);
  if (vp == NULL) return 1;

  /* A face needs a material for its alpha mode: borrow a mesh's default one. */
  Mesh* holder = CreateMesh(0, 0, 0);
  if (holder == NULL) return 1;

  /* Three screen vertices, all inside the viewport (outcode 0), clockwise
     on the screen: the other winding is the back and draws nothing. */
  MeshVertex v[3];
  memset(v, 0, sizeof v);
  const float xy[3][2] = {{160, 20}, {30, 220}, {290, 220}};
  for (int i = 0; i < 3; i++) {
    v[i].screenX = xy[i][0];
    v[i].screenY = xy[i][1];
    v[i].camZ = 1;
    v[i].invZ = 1;
  }
  MeshPolygon face;
  memset(&face, 0, sizeof face);
  for (int i = 0; i < 3; i++) face.vertexIndex[i] = i;
  face.material = face.backMaterial = GetMeshDefaultMaterial(holder);
  face.colors[0] = 0x7E00; /* red 31, green 16, blue 0: orange */

  for (int i = 0; i < kWidth * kHeight; i++) pixels[i] = 0x0C63; /* dark grey */
  DrawTriangle2D(&face, v, vp);
  const int ok = WritePpm("triangle.ppm", pixels, kWidth, kHeight);

  DeleteMesh(holder);
  DeleteViewport(vp);
  ReleaseEngine3D();
  return ok ? 0 : 1;
}
