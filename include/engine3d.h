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

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#define E3D_EXTERN_C extern "C"
#else
#define E3D_EXTERN_C extern
#endif

/* The caller-cleans convention of the original interface. */
#if defined(_MSC_VER) && defined(_M_IX86)
#define E3D_CALL __cdecl
#elif defined(__i386__)
#define E3D_CALL __attribute__((cdecl))
#else
#define E3D_CALL
#endif

/* What a shared library exports: a DLL's export table on Windows, default
   visibility in an ELF library built with everything else hidden. Hosts
   need no import marking: the import library supplies the calls. */
#if defined(_WIN32)
#define E3D_EXPORT __declspec(dllexport)
#else
#define E3D_EXPORT __attribute__((visibility("default")))
#endif

#if defined(E3D_BUILDING)
#define E3D_API E3D_EXTERN_C E3D_EXPORT
#else
#define E3D_API E3D_EXTERN_C
#endif

#if defined(E3D_BUILDING_HOST)
#define E3D_HOST_API E3D_EXTERN_C E3D_EXPORT
#else
#define E3D_HOST_API E3D_EXTERN_C
#endif

/* Layout checks that hold in C99 and C++ alike. */
#define E3D_ASSERT_CAT2(a, b) a##b
#define E3D_ASSERT_CAT(a, b) E3D_ASSERT_CAT2(a, b)
#define E3D_LAYOUT_ASSERT(cond) \
  typedef char E3D_ASSERT_CAT(e3d_layout_check_, __LINE__)[(cond) ? 1 : -1]
#if defined(__i386__) || defined(_M_IX86)
/* On i386 every host-visible record is exactly as many 32-bit words as the
   original interface gives it. */
#define E3D_I386_SIZE(type, words) E3D_LAYOUT_ASSERT(sizeof(type) == 4 * (words))
#define E3D_I386_WORD(type, field, word) \
  E3D_LAYOUT_ASSERT(offsetof(type, field) == 4 * (word))
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
/* Processor code: the feature bits below, 0 when CPUID is unavailable. Bits
   8-11 are 0: the original code kept the CPUID family there (and model and
   stepping in bits 0-7), and a code with a family is read that way, so only
   its bits 12-15 count. */
E3D_HOST_API uint32_t E3D_CALL ProcessorGetType(void);
#define E3D_CPU_AVX2 0x0010u /* AVX2, with its registers saved by the system */
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

/* Look-ups inside a scene. ByIndex: the object at that position of the
   scene's list (0 is the first assigned), or null past the end or when the
   index is negative. ByName: the first object whose name equals name exactly
   (case-sensitive), or null; empty names and a null name never match. */
E3D_API Mesh* E3D_CALL SearchMeshByIndex(Scene* scene, int32_t index);
E3D_API Mesh* E3D_CALL SearchMeshByName(Scene* scene, const char* name);
E3D_API Camera* E3D_CALL SearchCameraByIndex(Scene* scene, int32_t index);
E3D_API Camera* E3D_CALL SearchCameraByName(Scene* scene, const char* name);
E3D_API Light* E3D_CALL SearchLightByIndex(Scene* scene, int32_t index);
E3D_API Light* E3D_CALL SearchLightByName(Scene* scene, const char* name);
E3D_API Material* E3D_CALL SearchMaterialByIndex(Scene* scene, int32_t index);
E3D_API Material* E3D_CALL SearchMaterialByName(Scene* scene, const char* name);
/* Finds the first skeleton whose root bone is named name, or null. */
E3D_API Skeleton* E3D_CALL SearchSkeletonByName(Scene* scene, const char* name);
/* ---- engine: end ---- */

/* ======================================================================
** Matrices.
*/
/* ---- math: begin ---- */
/* Writes into out a camera matrix at eye looking at target: row 2 is the unit
   direction from target to eye, rows 0 and 1 the horizontal and up axes;
   the translation column is eye. Straight up or down gives a 90 degree turn. */
E3D_API void E3D_CALL CreateLookAtMatrix(const Vector3* eye, const Vector3* target, Matrix34* out);
/* ---- math: end ---- */

/* ======================================================================
** Radix sorter: sorts index lists by 32-bit keys without moving the keys.
*/
/* ---- radix: begin ---- */
/* Frees the shared scratch list, if any; returns what FreeMemory returned,
   else 0. The first sort allocates a new one. */
E3D_API int32_t E3D_CALL InitRadixSort(void);
/* Frees the shared scratch list, if any. */
E3D_API void E3D_CALL ReleaseRadixSort(void);
/* Grows the scratch list to count entries and fills indexList with 0..count-1.
   Returns count, or 0 (writing nothing) when count is below 1. */
E3D_API int32_t E3D_CALL ResetRadixSort(int32_t count, uint32_t* indexList);
/* Orders indexList (count indexes into keys, kept from the last call) by
   ascending 32-bit key; stable. With signedKeys nonzero the order is right
   only when no key is negative or all keys share their top byte. */
E3D_API void E3D_CALL RadixLongSorter(int32_t count, const void* keys, uint32_t* indexList, int32_t signedKeys);
/* Orders indexList (count indexes into keys, kept from the last call) by
   ascending float key; equal negative keys come out reversed. A list already
   in order is left as it is. */
E3D_API void E3D_CALL RadixFloatSorter(int32_t count, const float* keys, uint32_t* indexList);
/* ---- radix: end ---- */

/* ======================================================================
** Render tables and render state.
*/
/* ---- raster: begin ---- */
/* Builds the colour lookup tables (saturated sums and differences, channel
   products, alpha levels) and the line tables. Every call rebuilds them. */
E3D_API void E3D_CALL InitRenderTables(void);
/* Frees the lookup tables; a second call does nothing. */
E3D_API void E3D_CALL ReleaseRenderTables(void);
/* Makes viewport and camera (may be null) the target of the triangle
   drawers. Returns viewport. */
E3D_API Viewport* E3D_CALL SetRenderInfos(Viewport* viewport, Camera* camera);
/* Returns the viewport last given to SetRenderInfos, or null. */
E3D_API Viewport* E3D_CALL GetRenderViewport(void);
/* Chooses the span drawers for the processor code (InitEngine3D passes the
   host's): with E3D_CPU_AVX2, wider ones that draw the same pixels. */
E3D_API void E3D_CALL UpdateDrawScanline(uint32_t processorType);
/* ---- raster: end ---- */

/* ======================================================================
** Textures: checker and mip-mapped 1555/8888 textures.
*/
/* ---- textures: begin ---- */
/* Makes a width x height 1555 checker board of cells x cells squares, the
   top-left one colour b. Returns a new SurfaceDesc, or null (nothing kept). */
E3D_API SurfaceDesc* E3D_CALL CreateCheckerTexture(int32_t width, int32_t height, int32_t cells, uint16_t a, uint16_t b);
/* Fills levels 1-3 of a 16-bit chain from level 0 by 2x2 averaging; a 0x8000
   texel keys its block. A level that cannot be allocated ends the chain: it
   and the levels after it get a null pointer and zero sizes. */
E3D_API void E3D_CALL CreateMMTexture1555(MipChain* chain);
/* As CreateMMTexture1555 for 32-bit texels keyed by 0xFF000000; the last
   column and row of each level are copies, not averages. */
E3D_API void E3D_CALL CreateMMTexture8888(MipChain* chain);
/* Makes texture the only active stage (stage 1 when stage1 is non-zero, else
   stage 0) of the mesh's default material. */
E3D_API void E3D_CALL SetTexture(Mesh* mesh, SurfaceDesc* texture, int32_t stage1);
/* ---- textures: end ---- */

/* ======================================================================
** Materials and texture stages.
*/
/* ---- materials: begin ---- */
/* Copies source into a new material, then names the SOURCE "Material00",
   "Material01", ... Returns the copy, or null (the source is renamed even then). */
E3D_API Material* E3D_CALL CreateMaterial(Material* source);
/* Frees a material; polygons still using it are not updated.
   Returns FreeMemory's result, or 0 for null. */
E3D_API int32_t E3D_CALL DeleteMaterial(Material* mat);
/* Sets side which (0 front, 1 back, 2 both) of every polygon to mat, or to the
   mesh's default for null; recursive = 1 repeats on child meshes. 0 for a bad which. */
E3D_API int32_t E3D_CALL SetMaterial(Mesh* mesh, Material* mat, int32_t which, int32_t recursive);
/* Material of polygon 0: front for which 0 or 2, back for 1, else null. */
E3D_API Material* E3D_CALL GetMaterial(Mesh* mesh, int32_t which);
/* First polygon material (front before back) with that name, or null. */
E3D_API Material* E3D_CALL GetMaterialByName(Mesh* mesh, const char* name);
/* Sets side which of polygon face (and of face + 1 when pair is non-zero).
   A face out of range changes nothing and returns 1; 0 for a bad which. */
E3D_API int32_t E3D_CALL SetFaceMaterial(Mesh* mesh, int32_t face, Material* mat, int32_t pair, int32_t which);
/* Material of side which of polygon face, or null for a bad face or which. */
E3D_API Material* E3D_CALL GetFaceMaterial(Mesh* mesh, int32_t face, int32_t which);
/* Fills stage 0-3 from one texture (null empties it) and marks it active or not.
   Returns the stage, or null for a bad stage. */
E3D_API TextureStage* E3D_CALL SetMaterialTexture(Material* mat, int32_t stage, SurfaceDesc* texture, uint32_t option);
/* Fills stage 0-3 from the four levels of a mip chain (null empties it).
   Returns the stage, or null for a bad stage. */
E3D_API TextureStage* E3D_CALL SetMaterialTextureChain(Material* mat, int32_t stage, MipChain* chain, uint32_t option);
/* The record of stage 0-3, or null for a bad stage. */
E3D_API TextureStage* E3D_CALL GetMaterialTexture(Material* mat, int32_t stage);
/* Sets the texture mode of a stage to 0x10 or 0x20; other modes are ignored. */
E3D_API void E3D_CALL SetMaterialTextureMode(Material* mat, int32_t stage, uint32_t mode);
/* The texture mode of a stage (0x10, 0x20 or 0), 0 for a bad stage. */
E3D_API uint32_t E3D_CALL GetMaterialTextureMode(const Material* mat, int32_t stage);
/* Sets colour 0-2 to red, green, blue clamped to 0-255 and alpha 255. */
E3D_API void E3D_CALL SetMaterialColor(Material* mat, int32_t index, float red, float green, float blue);
/* The four floats of colour 0-2; any other index returns mat itself. */
E3D_API float* E3D_CALL GetMaterialColor(Material* mat, int32_t index);
/* Stores the colour operation and turns it on (enable non-zero) or off. */
E3D_API void E3D_CALL SetMaterialColorOp(Material* mat, uint16_t op, int32_t enable);
/* Sets the alpha level, clamped to 0-255. */
E3D_API void E3D_CALL SetMaterialAlphaLevel(Material* mat, int32_t level);
E3D_API int32_t E3D_CALL GetMaterialAlphaLevel(const Material* mat);
/* Sets the alpha mode 0-3; any larger value stores 0. */
E3D_API void E3D_CALL SetMaterialAlphaMode(Material* mat, uint32_t mode);
E3D_API int32_t E3D_CALL GetMaterialAlphaMode(const Material* mat);
/* Takes bit 0x40 always and the render mode (0x100000, 0x200000, 0x400000
   combined) when mode has any of it. */
E3D_API void E3D_CALL SetMaterialRenderMode(Material* mat, uint32_t mode);
/* Render mode and option bit: flags & 0x700040. */
E3D_API uint32_t E3D_CALL GetMaterialRenderMode(const Material* mat);
/* Sets the shade mode to mode & 7; 0 leaves it unchanged. */
E3D_API void E3D_CALL SetMaterialShadeMode(Material* mat, uint32_t mode);
E3D_API uint32_t E3D_CALL GetMaterialShadeMode(const Material* mat);
/* Sets the cull mode to mode & 0x38 (0x08, 0x10, 0x20); 0 leaves it unchanged. */
E3D_API void E3D_CALL SetMaterialCullMode(Material* mat, uint32_t mode);
E3D_API uint32_t E3D_CALL GetMaterialCullMode(const Material* mat);
/* Copies name into the material (at most 29 characters fit). Returns the
   terminating zero written, or null when either pointer is null. */
E3D_API char* E3D_CALL SetMaterialName(Material* mat, const char* name);
/* Empties the stage showing texture, but only when it is the single active stage. */
E3D_API void E3D_CALL RemoveTextureFromMaterial(SurfaceDesc* texture, Material* mat);
/* Points every polygon side that uses mat back at the mesh's default material. */
E3D_API void E3D_CALL RemoveMaterialFromMesh(Material* mat, Mesh* mesh);
/* ---- materials: end ---- */

/* ======================================================================
** Meshes: construction, polygons and validation.
*/
/* ---- meshes: begin ---- */
/* Creates a mesh of vertexCount vertices and polygonCount triangle slots in
   one block, or with both counts 0 an empty mesh to grow piece by piece.
   color (0x00RRGGBB) is the default material's base colour. Null when refused. */
E3D_API Mesh* E3D_CALL CreateMesh(int32_t vertexCount, int32_t polygonCount, uint32_t color);
/* Checks the polygons, compacts a piece-built mesh into one block, computes
   vertex normals and the bounding box. Returns the mesh to use from now on
   (possibly a new record: the old one is then freed), or null. */
E3D_API Mesh* E3D_CALL ValidateMesh(Mesh* mesh);
/* Takes the mesh out of its scene and hierarchy and frees it. */
E3D_API void E3D_CALL DeleteMesh(Mesh* mesh);
/* Appends a vertex to a piece-built mesh; 1, or 0 for a one-block mesh. */
E3D_API int32_t E3D_CALL AddMeshVertex(Mesh* mesh, float x, float y, float z);
/* Sets the position of vertex index (0 to the vertex count, inclusive); 1 or 0. */
E3D_API int32_t E3D_CALL SetMeshVertex(Mesh* mesh, int32_t index, float x, float y, float z);
/* Appends a triangle slot to a piece-built mesh and sets it as SetMeshTriPolygon
   does; returns its result, or 0 for a one-block mesh. */
E3D_API int32_t E3D_CALL AddMeshTriPolygon(Mesh* mesh, int32_t a, int32_t b, int32_t c, uint32_t unused, uint32_t group);
/* Sets triangle slot index to the vertices a, b, c (stored as corners c, b, a)
   in smoothing group group (0-31); 1, or 0 for a bad slot or vertex index. */
E3D_API int32_t E3D_CALL SetMeshTriPolygon(Mesh* mesh, int32_t index, int32_t a, int32_t b, int32_t c, uint32_t unused, uint32_t group);
/* Sets the quad a, b, c, d into slots index and index + 1 (triangles d, b, a
   and d, c, b; the shared diagonal is not an edge); 1 or 0. */
E3D_API int32_t E3D_CALL SetMeshQuadPolygon(Mesh* mesh, int32_t index, int32_t a, int32_t b, int32_t c, int32_t d, uint32_t unused, uint32_t group);
/* Sets the texture coordinates of the corners a, b, c of triangle slot index. */
E3D_API void E3D_CALL SetMeshTriTexCoords(Mesh* mesh, int32_t index, float u1, float v1, float u2, float v2, float u3, float v3);
/* Sets the texture coordinates of the corners a, b, c, d of the quad at index. */
E3D_API void E3D_CALL SetMeshQuadTexCoords(Mesh* mesh, int32_t index, float u1, float v1, float u2, float v2, float u3, float v3, float u4, float v4);
/* Recomputes the plane (unit normal and distance) of a polygon of the mesh. */
E3D_API void E3D_CALL CalcMeshPolygonNormal(Mesh* mesh, MeshPolygon* polygon);
/* Does nothing and returns 1: quads are set with SetMeshQuadPolygon. */
E3D_API int32_t E3D_CALL AddMeshQuadPolygon(Mesh* mesh, int32_t a, int32_t b, int32_t c, int32_t d, uint32_t unused, uint32_t group);
/* ---- meshes: end ---- */

/* ======================================================================
** Bounding boxes and vertex normals.
*/
/* ---- bounds: begin ---- */
/* Computes one normal per vertex per smoothing group from the face normals
   of the polygons that share the vertex inside that group. */
E3D_API void E3D_CALL CalcMeshVerticesNormal(Mesh* mesh);
/* Returns a new eight-vertex mesh: the axis-aligned box of the mesh's
   vertices, or null when out of memory. The caller keeps it as the mesh's box. */
E3D_API Mesh* E3D_CALL CreateAABB(Mesh* mesh);
/* ---- bounds: end ---- */

/* ======================================================================
** Primitive generators: finished meshes with normals and bounding boxes.
*/
/* ---- generators: begin ---- */
/* Each generator returns a new one-block mesh with vertex normals and a
   bounding box, named after its kind and a per-kind counter ("Sphere00",
   "Sphere01", ...), or null for bad arguments or out of memory. scale
   multiplies the coordinates per axis (null: 1, 1, 1). Polygons are wound so
   that a closed mesh is seen from outside under the default cull mode. Pass the
   mesh to ValidateMesh (or ActivateMesh) before assigning it to a scene. */

/* A size x size quad in the plane z = 0, facing -z, texture over the whole. */
E3D_API Mesh* E3D_CALL BillboardCreate(float size, const Vector3* scale, uint32_t color);
/* A cube of edge size centred on the origin, one whole texture per face. */
E3D_API Mesh* E3D_CALL CubeCreate(float size, const Vector3* scale, uint32_t color);
/* A cube of edge size whose edges are rounded with radius chamfer in segments
   steps; needs size > 2 * chamfer > 0 and segments >= 1. Named like a cube. */
E3D_API Mesh* E3D_CALL ChCubeCreate(float size, float chamfer, const Vector3* scale, int32_t segments, uint32_t color);
/* A sphere of rings - 1 latitude rings of segments vertices between two poles
   on the y axis; rings >= 4, segments >= 4. */
E3D_API Mesh* E3D_CALL SphereCreate(float radius, const Vector3* scale, int32_t rings, int32_t segments, uint32_t color);
/* The upper half of a sphere, rings - 1 rings from the pole down to the base
   circle at y = 0; closed by a flat base unless open is nonzero. */
E3D_API Mesh* E3D_CALL HemisphereCreate(float radius, const Vector3* scale, int32_t rings, int32_t segments, uint32_t color, int32_t open);
/* A size x size square in the plane z = 0 of rows x columns quads; a wireframe
   shows each grid line once. */
E3D_API Mesh* E3D_CALL GridCreate(float size, const Vector3* scale, int32_t rows, int32_t columns, uint32_t color);
/* A closed cylinder of the given height along y, centred on the origin; a cone
   when one radius is 0. Radii >= 0, not both 0; height > 0; segments >= 4. */
E3D_API Mesh* E3D_CALL CylinderCreate(float bottomRadius, float topRadius, float height, const Vector3* scale, int32_t segments, uint32_t color);
/* A closed thick-walled pipe along y, centred on the origin;
   outerRadius > innerRadius > 0, height > 0, segments >= 4. */
E3D_API Mesh* E3D_CALL TubeCreate(float outerRadius, float innerRadius, float height, const Vector3* scale, int32_t segments, uint32_t color);
/* A torus around the y axis: sides points around the tube, rings positions
   around the major circle; both radii > 0, sides >= 4, rings >= 4. */
E3D_API Mesh* E3D_CALL TorusCreate(float majorRadius, float minorRadius, const Vector3* scale, int32_t sides, int32_t rings, uint32_t color);
/* A disk in the plane z = 0, a fan of segments triangles around its centre;
   a wireframe shows only the rim. */
E3D_API Mesh* E3D_CALL DiskCreate(float radius, const Vector3* scale, int32_t segments, uint32_t color);
/* A flat ring in the plane z = 0 between two circles, segments quads;
   outerRadius > innerRadius > 0. */
E3D_API Mesh* E3D_CALL RingCreate(float outerRadius, float innerRadius, const Vector3* scale, int32_t segments, uint32_t color);
/* ---- generators: end ---- */

/* ======================================================================
** Cameras: eye, target, roll, field of view and near distance.
*/
/* ---- cameras: begin ---- */
/* Creates a camera at position looking at target, named "Camera00",
   "Camera01", ... Values are kept as given; far is 10000. Null when out of memory. */
E3D_API Camera* E3D_CALL CreateCamera(const Vector3* position, const Vector3* target, float roll, float fov, float nearPlane);
/* Takes the camera out of its scene and its hierarchy (its children and its
   target's are detached, not deleted) and frees it. */
E3D_API void E3D_CALL DeleteCamera(Camera* camera);
/* Copies name into the camera (at most 31 characters fit); null does nothing. */
E3D_API void E3D_CALL SetCameraName(Camera* camera, const char* name);
/* Sets the eye (which = 0) or the target (any other which). */
E3D_API void E3D_CALL SetCameraPosition(Camera* camera, const Vector3* value, int32_t which);
/* The eye (which = 0) or the target (any other which). */
E3D_API Vector3 E3D_CALL GetCameraPosition(const Camera* camera, int32_t which);
/* Roll angle about the line of sight, in degrees. */
E3D_API void E3D_CALL SetCameraRoll(Camera* camera, float roll);
E3D_API float E3D_CALL GetCameraRoll(const Camera* camera);
/* Field of view in degrees; a value outside 0 (excluded) to 180 sets 60. */
E3D_API void E3D_CALL SetCameraFov(Camera* camera, float fov);
E3D_API float E3D_CALL GetCameraFov(const Camera* camera);
/* Near distance; a value below 10 sets 10. */
E3D_API void E3D_CALL SetCameraNear(Camera* camera, float nearPlane);
E3D_API float E3D_CALL GetCameraNear(const Camera* camera);
/* ---- cameras: end ---- */

/* ======================================================================
** Viewports: render targets over the host's 16-bit pixel buffers.
*/
/* ---- viewports: begin ---- */
/* Creates a width x height viewport over the host's surface (pixels and
   pitch are read now; the surface record is not kept). depthBuffer = 1 adds a
   depth buffer of surface width x height entries. Null when out of memory. */
E3D_API Viewport* E3D_CALL CreateViewport(const SurfaceDesc* surface, int32_t width, int32_t height, int32_t depthBuffer);
/* Frees the viewport, its depth buffer and its material (FreeMemory on the
   material itself: clear it first with SetViewportMaterial if still in use). */
E3D_API void E3D_CALL DeleteViewport(Viewport* vp);
/* Stores value in the depth entries of the scissor's rows, across the whole
   width. The viewport must have a depth buffer. */
E3D_API void E3D_CALL ClearViewportDepthBuffer(Viewport* vp, uint32_t value);
/* ORs the whole type word into the flags, replacing type bits 0-1; a type
   with bits 0-1 clear is ignored. E3D_VIEWPORT_ENABLED enables drawing. */
E3D_API void E3D_CALL SetViewportType(Viewport* vp, uint32_t type);
/* Type bits 0-1 only. */
E3D_API uint32_t E3D_CALL GetViewportType(const Viewport* vp);
/* The camera of the viewport (null clears); scenes adopt it as their active camera. */
E3D_API void E3D_CALL SetViewportCamera(Viewport* vp, Camera* camera);
E3D_API Camera* E3D_CALL GetViewportCamera(const Viewport* vp);
/* Letter-boxes the viewport to width / height = aspect; a picture taller than
   the viewport is ignored. Raises a breakpoint trap (SIGTRAP) on entry. */
E3D_API void E3D_CALL SetViewportAspect(Viewport* vp, float aspect);
/* The vertical aspect: 4 x height / (3 x width) at creation, visible width /
   visible height after a letter-box setter. */
E3D_API float E3D_CALL GetViewportAspect(const Viewport* vp);
/* Letter-boxes with bars of rows each at top and bottom; ignored when
   negative or when the bars would cover the whole height. */
E3D_API void E3D_CALL SetViewportBorderHeight(Viewport* vp, int32_t rows);
E3D_API int32_t E3D_CALL GetViewportBorderHeight(const Viewport* vp);
/* Sets the scissor rectangle in pixels. Refused whole when right or bottom
   lies beyond the viewport; negative values become 0, left and top are limited to the size. */
E3D_API void E3D_CALL SetViewportScissor(Viewport* vp, float left, float right, float top, float bottom);
/* Writes left, right, top, bottom to rect[0..3]. */
E3D_API void E3D_CALL GetViewportScissor(const Viewport* vp, float* rect);
/* Sets the material of the post effects (null clears). DeleteViewport frees it. */
E3D_API void E3D_CALL SetViewportMaterial(Viewport* vp, Material* material);
#define E3D_VIEWPORT_DEPTH 0x8u           /* flags: a depth buffer is present */
#define E3D_VIEWPORT_ENABLED 0x80000000u  /* flags: drawing enabled */
/* ---- viewports: end ---- */

/* ======================================================================
** Node hierarchy: meshes, cameras, lights and their targets as nodes.
*/
/* ---- hierarchy: begin ---- */
/* Hangs child (any node) below parent, detaching it from its old parent first.
   A mesh below a mesh leaves its scene and is sorted with its root. 1, or 0
   when parent lies in child's subtree or memory is short. */
E3D_API int32_t E3D_CALL AttachChildToNode(void* parent, void* child);
/* Detaches child from parent; a detached mesh gets a sort area of its own.
   1, or 0 when child is not a child of parent. */
E3D_API int32_t E3D_CALL DetachChildFromNode(void* parent, void* child);
/* ---- hierarchy: end ---- */

/* ======================================================================
** Scenes: what DrawScene draws, and through which camera and viewport.
*/
/* ---- scenes: begin ---- */
/* Creates an empty scene without camera or viewport. Null when out of memory. */
E3D_API Scene* E3D_CALL CreateScene(void);
/* Takes every object out of the scene and deletes those with a zero host tag
   (SetMeshTvObject and alike); tagged objects and skeletons survive. Frees the scene. */
E3D_API void E3D_CALL DeleteScene(Scene* scene);
/* Deletes the scene and every mesh, camera, light and material it lists,
   tagged or not (skeletons survive). */
E3D_API void E3D_CALL DeleteWholeScene(Scene* scene);
/* Adds a validated top-level mesh that no scene holds; options bit 0 also
   gives it the scene's lights. Returns the mesh, or null when refused. */
E3D_API Mesh* E3D_CALL AssignMeshToScene(Scene* scene, Mesh* mesh, uint8_t options);
/* Takes the mesh out (options bit 0 also takes the scene's lights from it).
   1, or 0 when the mesh is not in this scene. */
E3D_API int32_t E3D_CALL RemoveMeshFromScene(Scene* scene, Mesh* mesh, uint8_t options);
/* Adds a skeleton; 1, or 0 when some scene holds it already. */
E3D_API int32_t E3D_CALL AssignSkeletonToScene(Scene* scene, Skeleton* skeleton);
/* 1, or 0 when the skeleton is not in this scene. Removing the last skeleton
   of the list empties the whole list. */
E3D_API int32_t E3D_CALL RemoveSkeletonFromScene(Scene* scene, Skeleton* skeleton);
/* Adds a camera; the first camera of a scene becomes active. 1, or 0 when
   some scene holds it already. */
E3D_API int32_t E3D_CALL AssignCameraToScene(Scene* scene, Camera* camera);
/* 1, or 0 when the camera is not in this scene. The active camera's successor
   (else predecessor) becomes active. Removing the last camera of the list
   empties the whole list. */
E3D_API int32_t E3D_CALL RemoveCameraFromScene(Scene* scene, Camera* camera);
/* Takes the camera out of every scene; returns how many held it. */
E3D_API int32_t E3D_CALL RemoveCameraFromAllScenes(Camera* camera);
/* Makes a camera of the scene active and returns its index; null makes none
   active (-1). A camera not in the scene changes nothing and gives -1. */
E3D_API int32_t E3D_CALL SetActivedSceneCamera(Scene* scene, Camera* camera);
/* Makes the next camera active, wrapping to the first; returns the camera
   that was active (null for a scene without cameras). */
E3D_API Camera* E3D_CALL SwitchActivedSceneCamera(Scene* scene);
/* The active camera, or null (also for a null scene). */
E3D_API Camera* E3D_CALL GetActivedSceneCamera(Scene* scene);
/* Adds a light; options bit 0 also gives it to every mesh of the scene.
   1, or 0 when this scene holds it already. Keep a light in one scene. */
E3D_API int32_t E3D_CALL AssignLightToScene(Scene* scene, Light* light, uint8_t options);
/* Takes the light out of the scene and of its meshes' light lists. 1, or 0
   when the light is not in this scene. */
E3D_API int32_t E3D_CALL RemoveLightFromScene(Scene* scene, Light* light);
/* Adds a material without any test: never add one twice. Returns 1. */
E3D_API int32_t E3D_CALL AssignMaterialToScene(Scene* scene, Material* material);
/* 1, or 0 when the material is not in this scene. */
E3D_API int32_t E3D_CALL RemoveMaterialFromScene(Scene* scene, Material* material);
/* Makes the scene draw into viewport (null unbinds, 0). A scene without an
   active camera adopts the viewport's camera. Returns the active index, 0
   when the viewport has no camera, -1 when its camera is in another scene. */
E3D_API int32_t E3D_CALL SetSceneViewport(Scene* scene, Viewport* viewport);
E3D_API Viewport* E3D_CALL GetSceneViewport(Scene* scene);
/* Number of meshes (top-level), cameras and lights in the scene. */
E3D_API int32_t E3D_CALL GetSceneNumberOfMeshes(Scene* scene);
E3D_API int32_t E3D_CALL GetSceneNumberOfCameras(Scene* scene);
E3D_API int32_t E3D_CALL GetSceneNumberOfLights(Scene* scene);
/* Meshes drawn by the last DrawScene. */
E3D_API int32_t E3D_CALL GetSceneNumberOfVisibleMeshes(Scene* scene);
/* ---- scenes: end ---- */

/* ======================================================================
** Mesh attributes: modes, visibility, smoothing groups, placement and tags.
*/
/* ---- attributes: begin ---- */
/* Sets the render mode of every mesh of the subtree: 0x00100000, 0x00300000
   or 0x00700000 exactly, any texture-stage bit (0x07800000) all of bits 20-26,
   else the mode bits stay; bit 0x40 is always taken. The default material follows. */
E3D_API void E3D_CALL SetMeshRenderMode(Mesh* node, uint32_t mode);
/* Sets the cull mode (mode & 0x38) of every mesh of the subtree that is not a billboard. */
E3D_API void E3D_CALL SetMeshCullMode(Mesh* node, uint32_t mode);
/* Sets the shade mode (mode & 7) of every mesh of the subtree and of its default material. */
E3D_API void E3D_CALL SetMeshShadeMode(Mesh* node, uint32_t mode);
/* Hides every mesh of the subtree. */
E3D_API void E3D_CALL HideMesh(Mesh* node);
/* Shows every mesh of the subtree again, except meshes of the second kind
   (node kind 2), which stay hidden. */
E3D_API void E3D_CALL ShowMesh(Mesh* node);
/* Render mode bits: flags & 0x07F00000. */
E3D_API uint32_t E3D_CALL GetMeshRenderMode(const Mesh* mesh);
/* Cull mode bits: flags & 0x38. */
E3D_API uint32_t E3D_CALL GetMeshCullMode(const Mesh* mesh);
/* Shade mode bits: flags & 7. */
E3D_API uint32_t E3D_CALL GetMeshShadeMode(const Mesh* mesh);
/* 0x4000 when the mesh is hidden, else 0. */
E3D_API uint32_t E3D_CALL IsHiddenMesh(const Mesh* mesh);
/* Puts polygon slot polygon into smoothing group 0-31; a bad slot or group
   changes nothing. Takes effect at the next CalcMeshVerticesNormal. */
E3D_API void E3D_CALL SetMeshFaceSmoothG(Mesh* mesh, int32_t polygon, int32_t group);
/* Smoothing group of polygon slot polygon, or 0 for a bad slot. */
E3D_API int32_t E3D_CALL GetMeshFaceSmoothG(const Mesh* mesh, int32_t polygon);
/* The viewport (and through it the camera) DrawMesh draws the mesh with. */
E3D_API void E3D_CALL SetMeshViewport(Mesh* mesh, Viewport* viewport);
E3D_API Viewport* E3D_CALL GetMeshViewport(const Mesh* mesh);
/* The mesh's 64 light slots (null-terminated when not full), or null when
   no light is assigned. */
E3D_API Light** E3D_CALL GetMeshLightList(const Mesh* mesh);
/* Turns the mesh to the Euler angles x, y, z (degrees, applied x first);
   its position is kept. */
E3D_API void E3D_CALL SetMeshModelOrientation(Mesh* mesh, float x, float y, float z);
/* The point of the mesh's own space that its placement turns about. */
E3D_API void E3D_CALL SetMeshPivot(Mesh* mesh, float x, float y, float z);
/* Pointer to the mesh's pivot itself. */
E3D_API Vector3* E3D_CALL GetMeshPivot(Mesh* mesh);
/* Places the mesh at x, y, z; its orientation is kept. */
E3D_API void E3D_CALL SetMeshModelPosition(Mesh* mesh, float x, float y, float z);
/* The mesh's position, in a buffer that the next call overwrites: copy it at once. */
E3D_API Vector3* E3D_CALL GetMeshModelPosition(const Mesh* mesh);
/* The host's tag of the mesh; a tagged mesh survives DeleteScene. */
E3D_API void E3D_CALL SetMeshTvObject(Mesh* mesh, uintptr_t tag);
E3D_API uintptr_t E3D_CALL GetMeshTvObject(const Mesh* mesh);
/* The material embedded in the mesh, used by polygons given no other. */
E3D_API Material* E3D_CALL GetMeshDefaultMaterial(Mesh* mesh);
/* Copies name into the mesh (at most 31 characters fit); null does nothing. */
E3D_API void E3D_CALL SetMeshName(Mesh* mesh, const char* name);
/* Marks the mesh validated as it is, without normals or a bounding box,
   so that a scene accepts it. */
E3D_API void E3D_CALL ActivateMesh(Mesh* mesh);
/* Sets the billboard mode (mode & 0x1F0); a mesh with any of these bits is
   turned toward the camera when drawn. 0 ends it. */
E3D_API void E3D_CALL SetMeshBillboardMode(Mesh* mesh, uint32_t mode);
#define E3D_BILLBOARD_MASK 0x1F0u
/* ---- attributes: end ---- */

/* ======================================================================
** Lights: omni and direct lights, and the lights each mesh is lit by.
*/
/* ---- lights: begin ---- */
/* Creates a point light named "Omni00", "Omni01", ... color is red, green,
   blue, alpha in 0-1, kept as given. flags gain E3D_LIGHT_OMNI. Null when out of memory. */
E3D_API Light* E3D_CALL CreateOmniLight(const Vector3* position, const float* color, float intensity, float nearAttenuation, float farAttenuation, uint32_t flags);
/* Creates a directional light from position toward direction, named
   "Direct00", "Direct01", ... flags gain E3D_LIGHT_DIRECT. Null when out of memory. */
E3D_API Light* E3D_CALL CreateDirectLight(const Vector3* position, const Vector3* direction, const float* color, float intensity, uint32_t flags);
/* Takes the light out of its scene (and that scene's meshes) and of the
   hierarchy, and frees it. Meshes of no scene keep it listed: remove it first. */
E3D_API void E3D_CALL DeleteLight(Light* light);
/* Lists the light in every mesh of node's subtree (at most 64 a mesh, a
   full list takes none); a listing mesh's scene gains the light. Returns 0. */
E3D_API int32_t E3D_CALL AssignLightToMesh(Light* light, Mesh* node);
/* Takes the light from the list of every mesh of node's subtree; the lists
   keep no gaps and the scene keeps the light. Returns 0. */
E3D_API int32_t E3D_CALL RemoveLightFromMesh(Light* light, Mesh* node);
/* Sets red, green, blue from 0-255 (stored as 0-1, clamped); alpha becomes 0. */
E3D_API void E3D_CALL SetLightColor(Light* light, float red, float green, float blue);
/* Red, green, blue, alpha times 255, in a buffer that the next call overwrites. */
E3D_API float* E3D_CALL GetLightColor(const Light* light);
E3D_API void E3D_CALL SetLightIntensity(Light* light, float intensity);
E3D_API float E3D_CALL GetLightIntensity(const Light* light);
/* Distances at which an attenuated omni light starts to fade and is gone. */
E3D_API void E3D_CALL SetLightAttenuation(Light* light, float nearAttenuation, float farAttenuation);
E3D_API float E3D_CALL GetLightNearAttenuation(const Light* light);
E3D_API float E3D_CALL GetLightFarAttenuation(const Light* light);
/* Sets the position (which = 0) or the direction target (any other which). */
E3D_API void E3D_CALL SetLightPosition(Light* light, const Vector3* value, int32_t which);
/* The position (which = 0) or the direction target, in a buffer that the
   next call overwrites. */
E3D_API Vector3* E3D_CALL GetLightPosition(Light* light, int32_t which);
/* Switches the light on (on non-zero) or off, and its attenuation likewise. */
E3D_API void E3D_CALL SetLightStatus(Light* light, int32_t on, int32_t attenuated);
/* Copies name into the light (at most 31 characters fit); null does nothing. */
E3D_API void E3D_CALL SetLightName(Light* light, const char* name);
#define E3D_LIGHT_ATTENUATED 0x1u   /* flags: fades between the attenuation distances */
#define E3D_LIGHT_OMNI 0x2u
#define E3D_LIGHT_DIRECT 0x4u
#define E3D_LIGHT_ONE_SIDED 0x10u   /* flags: a direct light lights front faces only */
#define E3D_LIGHT_ON 0x80000000u
/* ---- lights: end ---- */

/* ======================================================================
** Skeletons, bones and skins.
*/
/* ---- skeletons: begin ---- */
/* Creates an empty skeleton, or null when out of memory. */
E3D_API Skeleton* E3D_CALL CreateSkeleton(void);
/* Takes the skeleton out of its scene and frees it; its bones are not freed. */
E3D_API void E3D_CALL DeleteSkeleton(Skeleton* skeleton);
/* Creates a bone without name, parent or children, both matrices the
   identity, or null when out of memory. Bones are the host's: nothing frees them. */
E3D_API Bone* E3D_CALL CreateBone(void);
/* Names the bone; a name of 32 characters or more is refused and changes nothing. */
E3D_API void E3D_CALL SetBoneName(Bone* bone, const char* name);
/* Sets the rotation of matrix A (options bit 0 set) or B from a quaternion
   of any length, and that matrix's translation to 0. */
E3D_API void E3D_CALL SetBoneOrientation(Bone* bone, const Quaternion* rotation, uint32_t options);
/* Sets the translation of matrix A (options bit 0 set) or B. */
E3D_API void E3D_CALL SetBonePosition(Bone* bone, const Vector3* position, uint32_t options);
/* Makes bone (with its subtree) the last child of the bone named parentName,
   or with a null parentName the root, replacing any root. 0 when the name of
   bone is already in the skeleton or the parent is not found. */
E3D_API int32_t E3D_CALL AttachBoneToSkeleton(Skeleton* skeleton, const char* parentName, Bone* bone);
/* The topmost ancestor of bone, or bone itself. */
E3D_API Bone* E3D_CALL GetRootBone(Bone* bone);
/* The first skeleton of the scene whose root is bone; null for any other
   bone, even one of that skeleton's tree. */
E3D_API Skeleton* E3D_CALL GetSkeletonByBone(Scene* scene, const Bone* bone);
/* The bone named name in the skeleton's tree, or null. */
E3D_API Bone* E3D_CALL GetSkeletonBoneByName(Skeleton* skeleton, const char* name);
/* Gives the mesh a zeroed skin table of 32 bytes a vertex; 1, or 0 when out of memory. */
E3D_API int32_t E3D_CALL AssignSkinToMesh(Mesh* mesh);
/* Frees the mesh's skin table, if any. */
E3D_API void E3D_CALL RemoveSkinFromMesh(Mesh* mesh);
/* Vertex influences are not kept: these do nothing; the first two return 1. */
E3D_API int32_t E3D_CALL AssignVertexInfluence(Mesh* mesh, int32_t vertex, Bone* bone, float weight);
E3D_API int32_t E3D_CALL CheckWeightedVertices(Mesh* mesh);
E3D_API void E3D_CALL RemoveVertexInfluence(Mesh* mesh, int32_t vertex, Bone* bone);
/* ---- skeletons: end ---- */

/* ======================================================================
** Triangle drawers. Each fills the triangle of face (vertex indices into
** vertices, whose screenX, screenY it reads) into the viewport given to
** SetRenderInfos, in the alpha mode of the material of the side shown:
** 0 plain, 1 added, 2 blended by the alpha level (level 0 draws nothing),
** 3 the target subtracted from the colour. Only the side facing the viewer
** fills; the other winding draws nothing. Pixels are filled when their
** centre lies inside, left and top edges included, right and bottom not.
** The triangle must lie inside the viewport's clip rectangle. Depth-tested
** twins (...Z) keep z x 65536 per pixel in the depth buffer (smaller is
** nearer): plain faces draw when strictly nearer and write it; blended ones
** draw when as near or nearer and leave it.
*/
/* ---- drawers: begin ---- */
/* Fills the face with its flat colour, the pixel in colors[0]. Subtracting
   loses the lowest bit of red and green (one packed subtraction). */
E3D_API void E3D_CALL FlatSolidTriangle(MeshPolygon* face, MeshVertex* vertices);
/* FlatSolidTriangle with the depth test; subtracts channel by channel. */
E3D_API void E3D_CALL FlatSolidTriangleZ(MeshPolygon* face, MeshVertex* vertices);
/* Fills the face with its corner colours (colors[0-2], 0x00RRGGBB, one per
   vertex) blended across it; every mode works in 8 bits, then dithers to 5. */
E3D_API void E3D_CALL GouraudSolidTriangle(MeshPolygon* face, MeshVertex* vertices);
/* GouraudSolidTriangle with the depth test. */
E3D_API void E3D_CALL GouraudSolidTriangleZ(MeshPolygon* face, MeshVertex* vertices);
/*
** Textured drawers read the texture of one stage of the material: the
** level chosen by polygon submission (level 0 when called directly), its
** texel coordinates in the corners' u, v as texels of that level over z.
** Stage option bit 0: 8888 texels, else 1555; bit 1: the key texel (0x8000,
** 0xFF000000) leaves the pixel alone; bit 2: bilinear, else nearest. Mode
** 0x10 wraps, 0x20 clamps; with neither, power-of-two levels wrap.
*/
/* Draws the stage 0 texel. */
E3D_API void E3D_CALL NoneDiffuseTriangle(MeshPolygon* face, MeshVertex* vertices);
/* NoneDiffuseTriangle with the depth test. */
E3D_API void E3D_CALL NoneDiffuseTriangleZ(MeshPolygon* face, MeshVertex* vertices);
/* Draws the stage 0 texel modulated by the flat colour (colors[0]); with the
   material's colour operation on, colorOp 1 adds, 2 subtracts it, 3 ignores it. */
E3D_API void E3D_CALL FlatDiffuseTriangle(MeshPolygon* face, MeshVertex* vertices);
/* FlatDiffuseTriangle with the depth test. */
E3D_API void E3D_CALL FlatDiffuseTriangleZ(MeshPolygon* face, MeshVertex* vertices);
/* As FlatDiffuseTriangle with the corner colours (colors[0-2], 0x00RRGGBB)
   blended across the face. */
E3D_API void E3D_CALL GouraudDiffuseTriangle(MeshPolygon* face, MeshVertex* vertices);
/* GouraudDiffuseTriangle with the depth test. */
E3D_API void E3D_CALL GouraudDiffuseTriangleZ(MeshPolygon* face, MeshVertex* vertices);
/* Draws the stage 1 texel with its alpha (8888) or intensity (1555) as
   coverage: the pixel becomes d + (texel - d) x a / 255. */
E3D_API void E3D_CALL NoneOpacityTriangle(MeshPolygon* face, MeshVertex* vertices);
/* NoneOpacityTriangle with the depth test. */
E3D_API void E3D_CALL NoneOpacityTriangleZ(MeshPolygon* face, MeshVertex* vertices);
/* NoneOpacityTriangle with the texel met with the flat colour as in
   FlatDiffuseTriangle. */
E3D_API void E3D_CALL FlatOpacityTriangle(MeshPolygon* face, MeshVertex* vertices);
/* FlatOpacityTriangle with the depth test. */
E3D_API void E3D_CALL FlatOpacityTriangleZ(MeshPolygon* face, MeshVertex* vertices);
/* NoneOpacityTriangle with the texel met with the corner colours. */
E3D_API void E3D_CALL GouraudOpacityTriangle(MeshPolygon* face, MeshVertex* vertices);
/* GouraudOpacityTriangle with the depth test. */
E3D_API void E3D_CALL GouraudOpacityTriangleZ(MeshPolygon* face, MeshVertex* vertices);
/* Adds the stage 2 (environment) texel to the flat colour, saturating. */
E3D_API void E3D_CALL NoneEnvironmentTriangle(MeshPolygon* face, MeshVertex* vertices);
/* NoneEnvironmentTriangle with the depth test. */
E3D_API void E3D_CALL NoneEnvironmentTriangleZ(MeshPolygon* face, MeshVertex* vertices);
/* Adds the stage 2 texel to the flat colour, saturating (the lit colour of a
   flat-shaded face). */
E3D_API void E3D_CALL FlatEnvironmentTriangle(MeshPolygon* face, MeshVertex* vertices);
/* FlatEnvironmentTriangle with the depth test. */
E3D_API void E3D_CALL FlatEnvironmentTriangleZ(MeshPolygon* face, MeshVertex* vertices);
/* Adds the stage 2 texel to the corner colours blended across the face. */
E3D_API void E3D_CALL GouraudEnvironmentTriangle(MeshPolygon* face, MeshVertex* vertices);
/* GouraudEnvironmentTriangle with the depth test. */
E3D_API void E3D_CALL GouraudEnvironmentTriangleZ(MeshPolygon* face, MeshVertex* vertices);
/*
** Dot and wire drawers take the face untouched with the mesh's vertices and
** clip for themselves: edges are cut at the near plane of the camera given
** to SetRenderInfos (without one, edges reaching past it are dropped), and
** pixels outside the viewport's clip rectangle are skipped. Wire drawers
** draw the edges whose visibility bit is set (polygon flag bit 9 + k: corner
** k to corner k + 1), so quads show no diagonal.
*/
/* Draws each visible corner as one pixel of the flat colour (colors[0]). */
E3D_API void E3D_CALL ClipAndDrawFlatDotsTriangle(MeshPolygon* face, MeshVertex* vertices);
/* ClipAndDrawFlatDotsTriangle with the depth test. */
E3D_API void E3D_CALL ClipAndDrawFlatDotsTriangleZ(MeshPolygon* face, MeshVertex* vertices);
/* Draws each visible corner as one pixel of its own colour (colors[k]). */
E3D_API void E3D_CALL ClipAndDrawGouraudDotsTriangle(MeshPolygon* face, MeshVertex* vertices);
/* ClipAndDrawGouraudDotsTriangle with the depth test. */
E3D_API void E3D_CALL ClipAndDrawGouraudDotsTriangleZ(MeshPolygon* face, MeshVertex* vertices);
/* Draws the visible edges one pixel wide in the flat colour. */
E3D_API void E3D_CALL ClipAndDrawFlatWireTriangle(MeshPolygon* face, MeshVertex* vertices);
/* ClipAndDrawFlatWireTriangle with the depth test (1/z along each edge). */
E3D_API void E3D_CALL ClipAndDrawFlatWireTriangleZ(MeshPolygon* face, MeshVertex* vertices);
/* Draws the visible edges with the corner colours blended along them. */
E3D_API void E3D_CALL ClipAndDrawGouraudWireTriangle(MeshPolygon* face, MeshVertex* vertices);
/* ClipAndDrawGouraudWireTriangle with the depth test. */
E3D_API void E3D_CALL ClipAndDrawGouraudWireTriangleZ(MeshPolygon* face, MeshVertex* vertices);
/* Draws a line from (x0, y0) to (x1, y1), in pixels, in colour 0x00RRGGBB,
   clipped to vp's clip rectangle. Style 0 (and any unknown style): one pixel
   wide, both end pixels exact; 1: anti-aliased, blended; 2: anti-aliased, added. */
E3D_API void E3D_CALL DrawLine2D(Viewport* vp, float x0, float y0, float x1, float y1, uint32_t color, int32_t style);
/* ---- drawers: end ---- */

/* ======================================================================
** Full-screen effects on a finished image. The blurs work in place on
** width x height pixels whose rows are exactly width pixels apart; every
** halving truncates, and each call moves the image up by one row.
*/
/* ---- effects: begin ---- */
/* Pixel (x, y) becomes pixel (x, y + 1) halved (bit 15 kept) plus a quarter
   each of the pixels right of and below it. Column 0, the last column and the
   last two rows are left as they were; under 3 x 3 nothing is written. */
E3D_API void E3D_CALL FSBlur(uint16_t* pixels, int32_t width, int32_t height);
/* Two pixels a word: each becomes about half itself plus an eighth each of
   its four neighbours (the first word of a row uses unmasked sums, the last
   is copied); the last row is halved. An odd width, a width under 4 or a
   height under 2 leaves the image untouched. */
E3D_API void E3D_CALL FSBlurFast(uint16_t* pixels, int32_t width, int32_t height);
/* Covers the viewport's clip rectangle with its post-effect material: the sum
   of the three colours, or the texture of its active stage stretched over the
   viewport, in the material's alpha mode, depth-tested at 1/z 0.2 when the
   viewport has a depth buffer. Leaves vp as the render viewport. Without a
   material nothing happens. */
E3D_API void E3D_CALL DrawViewportPostFX(Viewport* vp);
/* ---- effects: end ---- */

/* ---- clipping: begin ---- */
/* Draws a flat triangle (colour in colors[0]) into vp without the 3D
   pipeline, clipped to the viewport by the outcodes of its vertices. */
E3D_API void E3D_CALL DrawTriangle2D(MeshPolygon* face, MeshVertex* vertices, Viewport* vp);
/* ---- clipping: end ---- */

/* ---- drawing: begin ---- */
/* Draws the scene into its viewport through its active camera: the painter
   path without a depth buffer, the depth-buffer path with one. Does nothing
   when the scene, its viewport or its camera is not ready. */
E3D_API void E3D_CALL DrawScene(Scene* scene);
/* Draws an activated mesh and its children, outside any scene, into the
   mesh's viewport through that viewport's camera. */
E3D_API void E3D_CALL DrawMesh(Mesh* mesh);
/* ---- drawing: end ---- */

#endif /* ENGINE3D_H */
