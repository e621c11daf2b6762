/* The showcase scene: every primitive, three kinds of light, a hierarchy, a
   billboard, and added, blended and subtracted materials. */
#ifndef DEMO_SHOWCASE_H
#define DEMO_SHOWCASE_H

#include "engine3d.h"

/* Builds the scene with one camera and no viewport; null when out of memory.
   DeleteWholeScene frees everything it made. */
Scene* CreateShowcase(void);

#endif
