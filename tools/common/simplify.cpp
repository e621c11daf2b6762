// Simplified copies through meshoptimizer: edge collapse, after a fast
// clustering for heavy reductions, and clustering alone where edge
// collapse stops short (scans with many small parts do).
#include "simplify.h"

#include <assimp/mesh.h>
#include <meshoptimizer.h>

std::vector<SourcePolygon> SimplifyPolygons(const aiMesh* mesh, const std::vector<SourcePolygon>& polygons,
                                            double ratio) {
  std::vector<unsigned> indices;
  indices.reserve(polygons.size() * 3);
  for (const SourcePolygon& p : polygons) {
    indices.insert(indices.end(), {p.v[0], p.v[1], p.v[2]});
    if (p.corners == 4) indices.insert(indices.end(), {p.v[0], p.v[2], p.v[3]});
  }
  const size_t wanted = size_t(double(indices.size() / 3) * ratio);
  const size_t target = (wanted < 1 ? 1 : wanted) * 3;
  std::vector<unsigned> out(indices.size());
  const float* positions = &mesh->mVertices[0].x;
  // Errors are relative to the mesh's extent: 1% keeps the outline, and the
  // clustering's limit is only the count. Edge collapse costs seconds on
  // millions of triangles, so a heavy reduction first clusters to four
  // times the count, which is fast, and collapses edges from there.
  size_t count = indices.size();
  if (count > 4 * target) {
    count = meshopt_simplifySloppy(out.data(), indices.data(), indices.size(), positions, mesh->mNumVertices,
                                   sizeof(aiVector3D), 4 * target, 1.0f, nullptr);
    indices.assign(out.begin(), out.begin() + long(count));
  }
  count = meshopt_simplify(out.data(), indices.data(), indices.size(), positions, mesh->mNumVertices,
                           sizeof(aiVector3D), target, 0.01f, 0, nullptr);
  if (count > target + target / 2)
    count = meshopt_simplifySloppy(out.data(), indices.data(), indices.size(), positions, mesh->mNumVertices,
                                   sizeof(aiVector3D), target, 1.0f, nullptr);
  std::vector<SourcePolygon> simple;
  simple.reserve(count / 3);
  for (size_t t = 0; t + 2 < count; t += 3)
    if (Spans(mesh, out[t], out[t + 1], out[t + 2]))
      simple.push_back({{out[t], out[t + 1], out[t + 2], 0}, 3});
  return simple;
}
