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

struct aiScene;

// The polygons a model file declares (OBJ face lines, PLY faces, OFF faces,
// STL facets), or -1 where the format or the file does not say. A PLY with
// triangle strips declares the triangles of its strips, which needs the
// whole file read: *strips is set and the count is -1. *vertices is the
// vertex count an OFF header declares, else -1.
long long DeclaredPolygons(const char* path, bool* strips, long long* vertices);

// The message of a PLY file whose header has no end_header line of its own.
inline constexpr const char* kPlyHeaderUnended = "a PLY header without end_header";

// Told now and then how far a reading has come: bytes of the file read so
// far, its size, and triangles so far.
struct ReadProgress {
  void (*call)(void* user, long long bytesRead, long long bytesTotal, long long triangles);
  void* user;
};

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
