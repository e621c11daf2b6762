// What our own OBJ, PLY and STL readers make of a file, in records of their
// own: the tools' model layer turns it into assimp's scene, and the web page
// straight into engine meshes (assimp has no WebAssembly build here). The
// readers are strict and bounded: every count and index is checked against
// what the file holds before it is used, nothing recurses, and a damaged
// file gives a message, never a read outside it.
#ifndef E3D_TOOLS_MODEL_PARTS_H
#define E3D_TOOLS_MODEL_PARTS_H

#include <cmath>
#include <string>
#include <string_view>
#include <vector>

// A point or direction, with assimp's arithmetic in assimp's order, so that
// joins and normals come out bit for bit as they did through its records.
struct Vec3 {
  float x = 0, y = 0, z = 0;
  Vec3() = default;
  Vec3(float ax, float ay, float az) : x(ax), y(ay), z(az) {}
  Vec3& operator+=(const Vec3& o) {
    x += o.x, y += o.y, z += o.z;
    return *this;
  }
  float operator*(const Vec3& o) const { return x * o.x + y * o.y + z * o.z; }  // the dot product
  float SquareLength() const { return x * x + y * y + z * z; }
  float Length() const { return std::sqrt(SquareLength()); }
};

struct Color3 {
  float r = 0, g = 0, b = 0;
  Color3() = default;
  Color3(float ar, float ag, float ab) : r(ar), g(ag), b(ab) {}
};

// One mesh a material: vertices, texture coordinates (as many, or none) and
// polygons (corner counts, and the corners in one list).
struct ModelPart {
  std::vector<Vec3> vertices, uvs;
  std::vector<unsigned> corners, sizes;
};

struct ModelMaterial {
  std::string name;
  Color3 diffuse{0.6f, 0.6f, 0.6f};  // assimp's defaults, so both readers draw alike
  float opacity = 1;
  std::string texture;
};

// Parts and materials side by side; no materials where the format has none
// (PLY, STL: drawn in white, as assimp reads them).
struct ModelParts {
  std::vector<ModelPart> parts;
  std::vector<ModelMaterial> materials;
};

// Told now and then how far a reading has come: bytes of the file read so
// far, its size, and triangles so far.
struct ReadProgress {
  void (*call)(void* user, long long bytesRead, long long bytesTotal, long long triangles);
  void* user;
};

// The message of a PLY file whose header has no end_header line of its own.
inline constexpr const char* kPlyHeaderUnended = "a PLY header without end_header";

// Reads bytes of an OBJ, PLY or STL file (format "obj", "ply" or "stl").
// folder is where an OBJ's material library is looked for. False with a
// message when the bytes are damaged or of another format.
bool ReadModelParts(std::string_view bytes, const char* format, const std::string& folder, ModelParts* out,
                    std::string* error, const ReadProgress* progress = nullptr);

// The polygons a model file declares (OBJ face lines, PLY faces, OFF faces,
// STL facets), or -1 where the format or the file does not say. A PLY with
// triangle strips declares the triangles of its strips, which needs the
// whole file read: *strips is set and the count is -1. *vertices is the
// vertex count an OFF header declares, else -1.
long long DeclaredPolygons(const char* path, bool* strips, long long* vertices);

// A file's bytes (its first limit bytes when limit is not 0).
bool ReadFile(const char* path, std::string* out, size_t limit = 0);
// A path's extension in lower case, and its folder with the last slash.
std::string Extension(const char* path);
std::string Folder(const char* path);

#endif
