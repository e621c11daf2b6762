/* The texture gallery: textured, keyed, alpha-textured, chrome, wireframe and
   dotted meshes, and anti-aliased lines drawn over the picture. */
#ifndef DEMO_GALLERY_H
#define DEMO_GALLERY_H

#include "showcase.h"

/* Builds the scene and its textures; null when out of memory. The textures
   outlive DeleteWholeScene: free them with FreeGallery after it. */
Scene* CreateGallery(void);
void FreeGallery(void);

/* Draws the gallery's lines over a picture of the given size. */
void DrawGalleryLines(Viewport* vp, float width, float height);

#endif
