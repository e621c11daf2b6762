/* The showcase scene: every primitive, three kinds of light, a hierarchy, a
   billboard, and added, blended and subtracted materials. */
#ifndef DEMO_SHOWCASE_H
#define DEMO_SHOWCASE_H

#include "engine3d.h"

/* Builds the scene with one camera and no viewport; null when out of memory.
   DeleteWholeScene frees everything it made. */
Scene* CreateShowcase(void);

/* What the scene builders share. */
enum { kUnlit = 1, kFlat = 3, kGouraud = 7 };
enum { kPlain = 0, kAdded = 1, kBlended = 2, kSubtracted = 3 };

typedef struct Builder {
  Scene* scene;
  int failed; /* set by any step that ran out of memory */
} Builder;

/* Activates a generated mesh, gives it a little ambient light, a shade mode
   and a position; null stays null and marks the build failed. */
Mesh* Place(Builder* b, Mesh* mesh, float x, float y, float z, uint32_t shade);
/* Assigns the mesh to the scene. */
void Show(Builder* b, Mesh* mesh);
/* A copy of the mesh's default material drawn in an alpha mode on both sides. */
void Translucent(Builder* b, Mesh* mesh, uint32_t mode, int32_t level);
/* A direct light from the upper left, an omni from the right and an
   attenuated warm omni from below, in the scene. */
void Lights(Builder* b);
/* Adds a camera at (0, eyeY, eyeZ) looking at the origin; returns the scene,
   or null (everything freed) when any step failed. */
Scene* Finish(Builder* b, float eyeY, float eyeZ);

#endif
