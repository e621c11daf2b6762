// Our own readers of OBJ, PLY and STL files: they read what assimp's readers
// drop (OBJ corners with more than three indices, PLY triangle strips), and
// read each file once, in the caller's process. They build the same kind of
// scene assimp's cleaning steps do, so one builder serves both, and they
// count what a file declares, so that a loss is noticed.
#ifndef E3D_TOOLS_OWN_READERS_H
#define E3D_TOOLS_OWN_READERS_H

#include <memory>
#include <string>
#include <string_view>

#include "model_parts.h"

struct aiScene;

// Our scenes keep the corners of all faces of a mesh in one block, which
// aiScene's own destructor cannot free: they are freed through this.
struct OwnSceneFree {
  void operator()(aiScene* scene) const;
};
using OwnScene = std::unique_ptr<aiScene, OwnSceneFree>;
// Frees the faces of an own scene's meshes early, leaving the rest.
void FreeOwnFaces(aiScene* scene);

// Reads an OBJ, PLY or STL file (by its extension) into a scene of one mesh per
// material. Null with a message in *error when the file is damaged or of
// another format; never reads outside the file.
OwnScene ReadOwnModel(const char* path, std::string* error, const ReadProgress* progress = nullptr);

// The same from bytes in memory; format is "obj", "ply" or "stl". folder is where
// an OBJ's material library is looked for.
OwnScene ReadOwnModelBytes(std::string_view bytes, const char* format, const std::string& folder,
                           std::string* error, const ReadProgress* progress = nullptr);

#endif
