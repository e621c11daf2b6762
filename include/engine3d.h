/*
** engine3d: a software 3D renderer for 16-bit 5:5:5 pixel buffers.
**
** This is the whole interface. A host builds meshes, materials, textures,
** lights, cameras, skeletons and scenes through the functions below, points a
** viewport at its own pixel buffer and asks for a scene or a mesh to be drawn.
** Everything runs on the caller's thread; make one call at a time.
**
** Handles are plain pointers to records owned by the host: every Create...
** returns a new record or null, and every record is freed with its Delete...
** The library tests handles for null only where a function says so.
**
** Results: Assign, Remove and Set functions return 1 when done and 0 when
** refused; searches return null when nothing is found. Colours given as
** integers are 0x00RRGGBB; pixels are red in bits 10-14, green 5-9, blue 0-4.
** Angles are in degrees.
**
** The records a host fills or reads (Vector3, Matrix34, SurfaceDesc, ...)
** are laid out word for word as in the original 32-bit interface; on x86-64
** the same fields keep their order and pointers take their natural size.
*/
#ifndef ENGINE3D_H
#define ENGINE3D_H

#include <stdint.h>

#ifdef __cplusplus
#define E3D_EXTERN_C extern "C"
#else
#define E3D_EXTERN_C extern
#endif

/* The caller-cleans convention of the original interface. */
#if defined(__i386__)
#define E3D_CALL __attribute__((cdecl))
#else
#define E3D_CALL
#endif

#if defined(E3D_BUILDING)
#define E3D_API E3D_EXTERN_C __attribute__((visibility("default")))
#else
#define E3D_API E3D_EXTERN_C
#endif

#if defined(E3D_BUILDING_HOST)
#define E3D_HOST_API E3D_EXTERN_C __attribute__((visibility("default")))
#else
#define E3D_HOST_API E3D_EXTERN_C
#endif

/* Layout checks that hold in C99 and C++ alike. */
#define E3D_ASSERT_CAT2(a, b) a##b
#define E3D_ASSERT_CAT(a, b) E3D_ASSERT_CAT2(a, b)
#define E3D_LAYOUT_ASSERT(cond) \
  typedef char E3D_ASSERT_CAT(e3d_layout_check_, __LINE__)[(cond) ? 1 : -1]
#if defined(__i386__)
/* On i386 every host-visible record is exactly as many 32-bit words as the
   original interface gives it. */
#define E3D_I386_SIZE(type, words) E3D_LAYOUT_ASSERT(sizeof(type) == 4 * (words))
#define E3D_I386_WORD(type, field, word) \
  E3D_LAYOUT_ASSERT(__builtin_offsetof(type, field) == 4 * (word))
#else
#define E3D_I386_SIZE(type, words) E3D_LAYOUT_ASSERT(1)
#define E3D_I386_WORD(type, field, word) E3D_LAYOUT_ASSERT(1)
#endif

/* ======================================================================
** Host support library (libengine3d_host). The engine calls these three and
** nothing else of the outside world. A host may define them itself: its
** versions then replace the default ones without rebuilding anything.
*/

/* Returns a block of at least size bytes, or null. Contents are undefined. */
E3D_HOST_API void* E3D_CALL AllocateMemory(uint32_t size);
/* Releases a block from AllocateMemory; returns 1 when freed, 0 for null. */
E3D_HOST_API int32_t E3D_CALL FreeMemory(void* block);
/* Processor code: bits 0-3 stepping, 4-7 model, 8-11 family (from CPUID
   leaf 1), then the feature bits below; 0 when CPUID is unavailable. */
E3D_HOST_API uint32_t E3D_CALL ProcessorGetType(void);
#define E3D_CPU_MMX 0x1000u
#define E3D_CPU_SSE 0x2000u
#define E3D_CPU_SSE2 0x4000u
#define E3D_CPU_SSE3 0x8000u

/* ======================================================================
** Host-visible records.
*/

/* A point or direction: three floats. */
typedef struct Vector3 {
  float x, y, z;
} Vector3;
E3D_LAYOUT_ASSERT(sizeof(Vector3) == 12);

/* A 3x4 matrix stored row by row: element (r, c) is m[4r + c]. Columns 0-2
   hold the rotation R, column 3 the translation T; p' = R p + T. */
typedef struct Matrix34 {
  float m[12];
} Matrix34;
E3D_LAYOUT_ASSERT(sizeof(Matrix34) == 48);

/* A rotation quaternion, w last. Need not be unit length. */
typedef struct Quaternion {
  float x, y, z, w;
} Quaternion;
E3D_LAYOUT_ASSERT(sizeof(Quaternion) == 16);

/* Opaque handles. */
typedef struct Mesh Mesh;
typedef struct Scene Scene;
typedef struct Camera Camera;
typedef struct Light Light;
typedef struct Material Material;
typedef struct Skeleton Skeleton;
typedef struct Bone Bone;
typedef struct Viewport Viewport;

/* ---- records: begin (host-visible image, texture and vertex records) ---- */

/* An image: the host fills one to describe its pixel buffer for
   CreateViewport; CreateCheckerTexture returns one. Only the named words
   mean anything; the others are left as they are. */
typedef struct SurfaceDesc {
  uint32_t reserved0[7];
  void* pixels;            /* word 7: first pixel */
  uint32_t reserved8[2];
  uint32_t width;          /* word 10: width in pixels */
  uint32_t height;         /* word 11: height in pixels */
  uint32_t pitch;          /* word 12: bytes from one row to the next */
  uint32_t reserved13[5];
  uint32_t textureWidth;   /* word 18: width as the material code reads it */
  uint32_t textureHeight;  /* word 19: height as the material code reads it */
  uint32_t reserved20[4];
} SurfaceDesc;
E3D_I386_SIZE(SurfaceDesc, 24);
E3D_I386_WORD(SurfaceDesc, pixels, 7);
E3D_I386_WORD(SurfaceDesc, width, 10);
E3D_I386_WORD(SurfaceDesc, pitch, 12);
E3D_I386_WORD(SurfaceDesc, textureWidth, 18);

/* A mip-mapped texture of four levels. The host fills level 0; the
   CreateMMTexture functions allocate and fill levels 1-3, whose pixel blocks
   then belong to the host (free them with FreeMemory). */
typedef struct MipChain {
  uint32_t reserved;       /* word 0: not read */
  void* levelPixels[4];    /* words 1-4 */
  int32_t levelWidths[4];  /* words 5-8 */
  int32_t levelHeights[4]; /* words 9-12 */
  int32_t levelPitches[4]; /* words 13-16: bytes per row */
} MipChain;
E3D_I386_SIZE(MipChain, 17);
E3D_I386_WORD(MipChain, levelPixels, 1);
E3D_I386_WORD(MipChain, levelWidths, 5);
E3D_I386_WORD(MipChain, levelPitches, 13);

/* One texture stage of a material, as GetMaterialTexture returns it. */
typedef struct TextureStage {
  uint32_t stageFlags;     /* bits 0-2 option, 4-5 texture mode, bit 30 power-of-two
                              sizes, bit 31 filled from a mip chain */
  void* levelPixels[4];    /* first texel of mip levels 0-3 */
  int32_t levelWidths[4];
  int32_t levelHeights[4];
  int32_t shifts[4];       /* log2(width) for power-of-two levels, else row pitch in texels */
  SurfaceDesc* texture;    /* the single texture set on the stage, or null */
} TextureStage;
E3D_I386_SIZE(TextureStage, 18);
E3D_I386_WORD(TextureStage, levelWidths, 5);
E3D_I386_WORD(TextureStage, shifts, 13);
E3D_I386_WORD(TextureStage, texture, 17);

/* A mesh vertex: its object-space position, then the words the pipeline
   writes while drawing (the screen vertex the triangle drawers read). */
typedef struct MeshVertex {
  float x, y, z;           /* words 0-2: object space */
  float camX, camY, camZ;  /* words 3-5: camera space */
  float screenX, screenY;  /* words 6-7: screen pixels */
  float invZ;              /* word 8: 1 / camera z */
  uint32_t outcode;        /* word 9: clip bits, E3D_OUT_... */
} MeshVertex;
E3D_I386_SIZE(MeshVertex, 10);
E3D_I386_WORD(MeshVertex, screenX, 6);
E3D_I386_WORD(MeshVertex, outcode, 9);
#define E3D_OUT_NEAR 0x10u
#define E3D_OUT_FAR 0x20u
#define E3D_OUT_LEFT 0x40u
#define E3D_OUT_RIGHT 0x80u
#define E3D_OUT_TOP 0x100u
#define E3D_OUT_BOTTOM 0x200u

/* Texture coordinates of one polygon corner: the host's pair and the
   environment pair the pipeline writes. */
typedef struct PolygonCorner {
  float u, v;
  float envU, envV;
} PolygonCorner;

/* A triangle of a mesh; also the face record the triangle drawers take.
   Corners are stored in the reverse of the order the host gives them. */
typedef struct MeshPolygon {
  uint32_t polygonFlags;        /* word 0: modes, edge visibility, smoothing group */
  float plane[4];               /* words 1-4: unit normal and d, n.p + d = 0 */
  int32_t vertexIndex[3];       /* words 5-7 */
  int32_t normalIndex[3];       /* words 8-10 */
  PolygonCorner corners[3];     /* words 11-22 */
  Material* material;           /* word 23: front material */
  Material* backMaterial;       /* word 24: back material */
  uint32_t colors[3];           /* words 25-27: flat pixel colour, or corner colours 0x00RRGGBB */
} MeshPolygon;
E3D_I386_SIZE(MeshPolygon, 28);
E3D_I386_WORD(MeshPolygon, vertexIndex, 5);
E3D_I386_WORD(MeshPolygon, corners, 11);
E3D_I386_WORD(MeshPolygon, material, 23);
E3D_I386_WORD(MeshPolygon, colors, 25);

/* A triangle drawer: fills the face's triangle from the vertices' screen words. */
typedef void(E3D_CALL* TriangleDrawer)(MeshPolygon* face, MeshVertex* vertices);

/* ---- records: end ---- */

/* ======================================================================
** Engine start-up, shut-down and look-ups.
*/
/* ---- engine: begin ---- */
/* Starts the engine: reads the processor type, sets up the sorter and the
   render tables. Call once before drawing; a second call forgets all scenes. */
E3D_API void E3D_CALL InitEngine3D(void);
/* Releases the sorter's and the tables' memory. Does not delete scenes. */
E3D_API void E3D_CALL ReleaseEngine3D(void);
/* ---- engine: end ---- */

/* ======================================================================
** Matrices.
*/
/* ---- math: begin ---- */
/* ---- math: end ---- */

/* ======================================================================
** Radix sorter: sorts index lists by 32-bit keys without moving the keys.
*/
/* ---- radix: begin ---- */
/* ---- radix: end ---- */

/* ======================================================================
** Render tables and render state.
*/
/* ---- raster: begin ---- */
/* ---- raster: end ---- */

/* ======================================================================
** Textures: checker and mip-mapped 1555/8888 textures.
*/
/* ---- textures: begin ---- */
/* ---- textures: end ---- */

/* ======================================================================
** Materials and texture stages.
*/
/* ---- materials: begin ---- */
/* ---- materials: end ---- */

/* ======================================================================
** Meshes: construction, polygons and validation.
*/
/* ---- meshes: begin ---- */
/* ---- meshes: end ---- */

/* ======================================================================
** Bounding boxes and vertex normals.
*/
/* ---- bounds: begin ---- */
/* ---- bounds: end ---- */

/* ======================================================================
** Primitive generators: finished, validated meshes.
*/
/* ---- generators: begin ---- */
/* ---- generators: end ---- */

#endif /* ENGINE3D_H */
