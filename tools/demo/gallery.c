/* The texture gallery: a mip-mapped checker floor and cube, a keyed sprite,
   an alpha-textured glow, a chrome sphere, a wireframe torus and a dotted
   sphere. The textures are the host's: made here, freed by FreeGallery. */
#include "gallery.h"

#include <math.h>
#include <stddef.h>
#include <string.h>

/* Everything the gallery's materials point into. */
static SurfaceDesc* checker;
static MipChain checkerChain;
static uint16_t spriteTexels[32 * 32];
static uint32_t glowTexels[64 * 64];
static uint16_t skyTexels[64 * 64];
static SurfaceDesc sprite, glow, sky;

static uint16_t Rgb555(int r, int g, int b) { return (uint16_t)((r >> 3) << 10 | (g >> 3) << 5 | (b >> 3)); }

static void Describe(SurfaceDesc* s, void* texels, int size, int texelBytes) {
  memset(s, 0, sizeof *s);
  s->pixels = texels;
  s->width = s->textureWidth = (uint32_t)size;
  s->height = s->textureHeight = (uint32_t)size;
  s->pitch = (uint32_t)(size * texelBytes);
}

/* A five-pointed star on the key texel, a radial glow whose alpha falls off
   from the centre, and an environment of sky over a brown ground. */
static int MakeTextures(void) {
  checker = CreateCheckerTexture(64, 64, 8, Rgb555(240, 230, 210), Rgb555(40, 70, 150));
  if (checker == NULL) return 0;
  memset(&checkerChain, 0, sizeof checkerChain);
  checkerChain.levelPixels[0] = checker->pixels;
  checkerChain.levelWidths[0] = checkerChain.levelHeights[0] = 64;
  checkerChain.levelPitches[0] = 128;
  CreateMMTexture1555(&checkerChain);
  for (int y = 0; y < 32; y++)
    for (int x = 0; x < 32; x++) {
      const float dx = (float)x - 15.5f, dy = (float)y - 15.5f;
      /* Five points: the edge's radius swings between 6 and 15 texels. */
      const float r = sqrtf(dx * dx + dy * dy), edge = 10.5f + 4.5f * cosf(5.0f * atan2f(dy, dx));
      spriteTexels[y * 32 + x] = r < edge ? Rgb555(255, 220 - y * 4, 40) : 0x8000;
    }
  Describe(&sprite, spriteTexels, 32, 2);
  for (int y = 0; y < 64; y++)
    for (int x = 0; x < 64; x++) {
      const float dx = (float)x - 31.5f, dy = (float)y - 31.5f;
      float a = 1.0f - (dx * dx + dy * dy) / (32.0f * 32.0f);
      a = a < 0.0f ? 0.0f : a * a;
      glowTexels[y * 64 + x] = (uint32_t)(a * 255.0f) << 24 | 0xFF9030u;
    }
  Describe(&glow, glowTexels, 64, 4);
  for (int y = 0; y < 64; y++)
    for (int x = 0; x < 64; x++)
      skyTexels[y * 64 + x] = y < 32 ? Rgb555(60 + y * 4, 110 + y * 4, 255) : Rgb555(120 - (y - 32), 80, 40);
  Describe(&sky, skyTexels, 64, 2);
  return 1;
}

/* A material of its own for the mesh, with one active texture stage. */
static Material* Textured(Builder* b, Mesh* mesh) {
  if (mesh == NULL) return NULL;
  Material* mat = CreateMaterial(GetMeshDefaultMaterial(mesh));
  if (mat == NULL) {
    b->failed = 1;
    return NULL;
  }
  SetMaterial(mesh, mat, 2, 0);
  AssignMaterialToScene(b->scene, mat);
  return mat;
}

Scene* CreateGallery(void) {
  Builder b = {CreateScene(), 0};
  if (b.scene == NULL) return NULL;
  if (!MakeTextures()) b.failed = 1;

  /* The floor: perspective and mip levels; the cube: bilinear. */
  Mesh* floor = Place(&b, GridCreate(600, NULL, 6, 6, 0xFFFFFF), 0, -70, 200, kGouraud);
  if (floor) SetMeshModelOrientation(floor, 90, 0, 0);
  Material* m = Textured(&b, floor);
  if (m) SetMaterialTextureChain(m, 0, &checkerChain, 0);
  Show(&b, floor);
  Mesh* cube = Place(&b, CubeCreate(70, NULL, 0xFFFFFF), -120, -10, 20, kGouraud);
  if (cube) SetMeshModelOrientation(cube, 20, 35, 0);
  m = Textured(&b, cube);
  if (m) SetMaterialTextureChain(m, 0, &checkerChain, 4);
  Show(&b, cube);

  /* Chrome: the sky reflected over the lit surface. */
  Mesh* ball = Place(&b, SphereCreate(45, NULL, 16, 24, 0x303030), 10, 0, 40, kGouraud);
  m = Textured(&b, ball);
  if (m) SetMaterialTexture(m, 2, &sky, 0);
  Show(&b, ball);

  /* A wireframe torus and a sphere of dots. */
  Mesh* wire = Place(&b, TorusCreate(34, 12, NULL, 10, 20, 0x60F0A0), 130, 20, 30, kGouraud);
  if (wire) {
    SetMeshModelOrientation(wire, -50, 20, 0);
    SetMeshRenderMode(wire, 0x00300000);
  }
  Show(&b, wire);
  Mesh* dots = Place(&b, SphereCreate(30, NULL, 12, 20, 0xFFFFFF), 130, 90, 60, kUnlit);
  if (dots) SetMeshRenderMode(dots, 0x00100000);
  Show(&b, dots);

  /* A keyed sprite and a glow, both billboards, unlit. */
  Mesh* star = Place(&b, BillboardCreate(50, NULL, 0xFFFFFF), -40, 80, -20, kUnlit);
  if (star) {
    SetMeshBillboardMode(star, 16);
    SetTexture(star, &sprite, 0);
  }
  Show(&b, star);
  Mesh* flare = Place(&b, BillboardCreate(90, NULL, 0xFFFFFF), 70, -40, -60, kUnlit);
  if (flare) SetMeshBillboardMode(flare, 16);
  m = Textured(&b, flare);
  if (m) {
    SetMaterialColor(m, 0, 0, 0, 0);
    SetMaterialColor(m, 1, 255, 255, 255);
    SetMaterialColor(m, 2, 0, 0, 0);
    SetMaterialTexture(m, 1, &glow, 1);
  }
  Show(&b, flare);

  Lights(&b);
  return Finish(&b, 70, -300);
}

/* A fan of lines in the lower left corner: plain, blended and added. */
void DrawGalleryLines(Viewport* vp, float width, float height) {
  for (int i = 0; i <= 6; i++) {
    const float x = 20.0f + (float)i * 22.0f, y = height - 20.0f - (float)i * 9.0f;
    DrawLine2D(vp, 12.0f, height - 12.0f, x, y - 60.0f, 0xFFFFFF, i % 3);
  }
  DrawLine2D(vp, width - 200.0f, height - 14.0f, width - 14.0f, height - 40.0f, 0x80FF80, 1);
}

void FreeGallery(void) {
  for (int i = 1; i < 4; i++) {
    FreeMemory(checkerChain.levelPixels[i]);
    checkerChain.levelPixels[i] = NULL;
  }
  if (checker != NULL) {
    FreeMemory(checker->pixels);
    FreeMemory(checker);
    checker = NULL;
  }
}
