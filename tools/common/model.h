// Model files (through assimp, or our own OBJ and PLY readers) turned into
// engine meshes in a scene.
#ifndef E3D_TOOLS_MODEL_H
#define E3D_TOOLS_MODEL_H

#include <string>
#include <vector>

#include "engine3d.h"

struct ModelTexture;
struct aiMesh;

// Exit codes a script can test; the tools return them as they are.
enum ModelStatus {
  kModelOk = 0,
  kModelUsage = 1,        // bad command line
  kModelUnreadable = 2,   // missing file, or a format or content the importer refuses
  kModelEmpty = 3,        // read, but without a single polygon to draw
  kModelTooBig = 4,       // more polygons than the engine's 32-bit counts and blocks hold
  kModelNoMemory = 5,     // the engine refused a mesh, scene or viewport
  kModelWriteFailed = 6,  // the image could not be written
  kModelFacesDropped = 7  // drawn, but polygons the file declares could not be read
};

// Polygon (and vertex) budget of one scene: its sort area must fit one
// 32-bit sized block.
constexpr long long kMaxScenePolygons = 50000000;

struct ModelOptions {
  bool textures = true;  // decode diffuse textures
  bool twoSided = true;  // draw the side each polygon turns away too
  int maxTexture = 512;  // largest texture side kept, a power of two
  bool zUp = false;      // the file's up axis is z (as in Blender and 3DS files), not y
  // Vertices per engine mesh; bigger parts are split. Every mesh a scene
  // takes in rebuilds the scene's sort area for all its polygons, so a big
  // model reads faster in fewer, larger meshes (the engine's normals cost
  // time in step with a mesh's size).
  int vertexLimit = 32768;
  long long maxPolygons = kMaxScenePolygons;  // larger models are refused
  // A model of more triangles also gets a hidden, simplified copy of about
  // this many (0: none), for drawing while a camera moves.
  long long simplifyTo = 0;
  // assimp first reads the file in a child process, which may take this
  // long: a file that crashes or stalls it is refused instead. 0: 60 s and
  // a second more for every MB of the file.
  unsigned importSeconds = 0;
  // Told now and then while our own readers read a file (bytes read, the
  // file's size, triangles so far), or null.
  void (*progress)(void* user, long long bytesRead, long long bytesTotal, long long triangles) = nullptr;
  void* progressUser = nullptr;
};

// A progress for ModelOptions that draws a line on a terminal, once a
// reading has taken more than a second. Give it a ReadingLine as user.
struct ReadingLine {
  double start = 0;  // set by LoadModel
  bool shown = false;
};
void ShowReading(void* user, long long bytesRead, long long bytesTotal, long long triangles);

// Model space is normalised: centred on the origin, bounding sphere radius
// kModelRadius, y up, z away from a camera at yaw 0.
constexpr float kModelRadius = 100.0f;

struct Model {
  Scene* scene = nullptr;
  std::vector<Mesh*> meshes;
  Mesh* full = nullptr;          // the root that carries the model's meshes
  Mesh* simple = nullptr;        // the root of the hidden simplified copy, or null
  long long simplePolygons = 0;  // triangle slots in the simplified copy
  std::vector<ModelTexture*> textures;
  long long polygons = 0;  // triangle slots in all meshes
  bool textured = false;   // some mesh carries a texture
  long long dropped = 0;   // polygons the file declares that no reader read
  std::vector<std::string> warnings;
};

// Loads path into a new scene of validated meshes (no camera, no lights).
// On failure returns the status and a message in *error, and leaves *model empty.
ModelStatus LoadModel(const char* path, const ModelOptions& options, Model* model, std::string* error);
// Whether path's extension names a format the readers know.
bool ModelExtensionKnown(const char* path);
// Deletes the scene with everything in it, and the textures.
void FreeModel(Model* model);

// A triangle or a quad of a source mesh, by source vertex indexes.
struct SourcePolygon {
  unsigned v[4];
  int corners;  // 3 or 4
};
// A part of a source mesh small enough for one engine mesh: its vertices
// (local index -> source index) and its polygons (numbers in the source list).
struct MeshChunk {
  std::vector<unsigned> vertices;
  std::vector<unsigned> polygons;
};
// True when corners a, b, c of the mesh span some area at finite coordinates.
bool Spans(const aiMesh* mesh, unsigned a, unsigned b, unsigned c);
// Cuts the polygons, in order, into chunks of at most vertexLimit vertices.
std::vector<MeshChunk> SplitPolygons(const std::vector<SourcePolygon>& polygons, unsigned sourceVertices,
                                     int vertexLimit);

#endif
