// A lighter copy of a mesh for drawing while the camera moves.
#ifndef E3D_TOOLS_SIMPLIFY_H
#define E3D_TOOLS_SIMPLIFY_H

#include <vector>

#include "model.h"

struct aiMesh;

// About ratio of the polygons' triangles, as triangles over the same source
// vertices, wound as they were. The shape is kept where it can be (edges
// collapsed within a small error); where that cannot reach the count, the
// vertices are clustered on a grid instead, which always can.
std::vector<SourcePolygon> SimplifyPolygons(const aiMesh* mesh, const std::vector<SourcePolygon>& polygons,
                                            double ratio);

#endif
