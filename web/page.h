/* The web page's drawing: one generated primitive, lit by a key and a fill
   light, orbited by a camera, drawn into a 5:5:5 buffer and handed to the
   page as RGBA. The same code runs natively, where a test pins the hash of
   a fixed view that the page in a browser must match. */
#ifndef E3D_WEB_PAGE_H
#define E3D_WEB_PAGE_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Starts the engine and a width x height picture; 1 when ready. */
int PageStart(int width, int height);
/* Frees everything PageStart made. */
void PageStop(void);
/* Shows primitive 0-4 (sphere, torus, cube, cylinder, rounded cube; 5 the
   model file read last) in
   shading 0-6 (flat, Gouraud, textured, environment, translucent, wire,
   dots); 1 when the mesh was made. */
int PageShow(int primitive, int shading);
/* Reads a model file's bytes (format 0 OBJ, 1 PLY, 2 STL) with the tools' own
   readers and shows it as primitive 5 in the shading; 1 when shown, else 0
   and PageError says why (the picture keeps what it showed). */
int PageLoad(const char* bytes, int length, int format, int shading);
const char* PageError(void);
/* Camera angles in degrees and distance as a multiple of the framing one. */
void PageView(float yaw, float pitch, float zoom);
/* Draws a frame; returns the triangles of the mesh. */
int PageDraw(void);
/* The 5:5:5 picture, and the same as RGBA bytes (made by PageRgba). */
const uint16_t* PagePixels(void);
const uint8_t* PageRgba(void);
/* FNV-1a of the 5:5:5 picture's bytes, low byte first. */
uint32_t PageHash(void);

#ifdef __cplusplus
}
#endif

#endif
