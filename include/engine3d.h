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

#endif /* ENGINE3D_H */
