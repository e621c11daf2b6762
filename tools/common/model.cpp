// Model loading: assimp reads the file and flattens its node tree; every
// mesh becomes one or more engine meshes whose default material carries the
// file's colours and diffuse texture.
#include "model.h"

#include <assimp/material.h>
#include <assimp/matrix4x4.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>
#include <errno.h>
#include <float.h>
#include <math.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>
#include <strings.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <assimp/Importer.hpp>

#include "own_readers.h"
#include "simplify.h"
#include "texture.h"

namespace {

// The cull mode that draws polygons facing either way.
constexpr uint32_t kCullNone = 0x08;

// The node tree is walked here rather than flattened by the importer, whose
// flattening step crashes on some files.
constexpr unsigned kImportFlags = aiProcess_JoinIdenticalVertices | aiProcess_GenSmoothNormals |
                                  aiProcess_SortByPType | aiProcess_FlipUVs | aiProcess_FindInvalidData;

// A mesh placed by a node: the same mesh may be placed several times.
struct Instance {
  unsigned mesh;
  aiMatrix4x4 place;
};

void CollectInstances(const aiScene* ai, const aiNode* node, const aiMatrix4x4& parent, int depth,
                      std::vector<Instance>* out) {
  if (node == nullptr || depth > 256) return;
  const aiMatrix4x4 place = parent * node->mTransformation;
  for (unsigned i = 0; i < node->mNumMeshes; i++)
    if (node->mMeshes[i] < ai->mNumMeshes) out->push_back({node->mMeshes[i], place});
  for (unsigned i = 0; i < node->mNumChildren; i++)
    CollectInstances(ai, node->mChildren[i], place, depth + 1, out);
}

// The cleaning steps trust faces to have corners and indices in range, and
// read past the vertices of a damaged file; such a file skips them, and its
// bad faces are dropped here.
bool FacesWellFormed(const aiScene* ai) {
  for (unsigned m = 0; m < ai->mNumMeshes; m++) {
    const aiMesh* mesh = ai->mMeshes[m];
    if (mesh == nullptr || (mesh->mNumFaces > 0 && mesh->mFaces == nullptr)) return false;
    for (unsigned f = 0; f < mesh->mNumFaces; f++) {
      const aiFace& face = mesh->mFaces[f];
      if (face.mNumIndices == 0 || face.mIndices == nullptr) return false;
      for (unsigned i = 0; i < face.mNumIndices; i++)
        if (face.mIndices[i] >= mesh->mNumVertices) return false;
    }
  }
  return true;
}

}  // namespace

bool Spans(const aiMesh* mesh, unsigned a, unsigned b, unsigned c) {
  if (a >= mesh->mNumVertices || b >= mesh->mNumVertices || c >= mesh->mNumVertices) return false;
  const aiVector3D& p = mesh->mVertices[a];
  const aiVector3D n = (mesh->mVertices[b] - p) ^ (mesh->mVertices[c] - p);
  const float area = n.SquareLength();
  return area > 0 && isfinite(area);
}

namespace {

// The polygons of a mesh that the engine can draw: triangles and quads as
// they are, larger polygons as fans; nothing with a repeated corner, without
// area or with coordinates out of range.
std::vector<SourcePolygon> DrawablePolygons(const aiMesh* mesh) {
  std::vector<SourcePolygon> out;
  if (mesh->mVertices == nullptr || mesh->mFaces == nullptr) return out;
  out.reserve(mesh->mNumFaces);
  for (unsigned f = 0; f < mesh->mNumFaces; f++) {
    const aiFace& face = mesh->mFaces[f];
    const unsigned* v = face.mIndices;
    if (face.mNumIndices == 4 && v[0] != v[1] && v[0] != v[2] && v[0] != v[3] && v[1] != v[2] &&
        v[1] != v[3] && v[2] != v[3] && Spans(mesh, v[0], v[1], v[3]) && Spans(mesh, v[1], v[2], v[3])) {
      out.push_back({{v[0], v[1], v[2], v[3]}, 4});
      continue;
    }
    for (unsigned i = 2; i < face.mNumIndices; i++)
      if (v[0] != v[i - 1] && v[i - 1] != v[i] && v[0] != v[i] && Spans(mesh, v[0], v[i - 1], v[i]))
        out.push_back({{v[0], v[i - 1], v[i], 0}, 3});
  }
  return out;
}

struct Bounds {
  aiVector3D low{FLT_MAX, FLT_MAX, FLT_MAX}, high{-FLT_MAX, -FLT_MAX, -FLT_MAX};
  void Add(const aiVector3D& p) {
    low.x = fminf(low.x, p.x), low.y = fminf(low.y, p.y), low.z = fminf(low.z, p.z);
    high.x = fmaxf(high.x, p.x), high.y = fmaxf(high.y, p.y), high.z = fmaxf(high.z, p.z);
  }
};

uint32_t PackColor(const aiColor3D& c) {
  auto channel = [](float v) { return uint32_t(v <= 0 ? 0 : v >= 1 ? 255 : v * 255.0f + 0.5f); };
  return channel(c.r) << 16 | channel(c.g) << 8 | channel(c.b);
}

// The diffuse or base colour; light grey when the file gives neither (the
// importer's getters clear their result when the key is missing).
aiColor3D Diffuse(const aiMaterial* mat) {
  aiColor3D diffuse;
  aiColor4D base;
  if (mat != nullptr && mat->Get(AI_MATKEY_COLOR_DIFFUSE, diffuse) == AI_SUCCESS) return diffuse;
  if (mat != nullptr && mat->Get(AI_MATKEY_BASE_COLOR, base) == AI_SUCCESS)
    return aiColor3D(base.r, base.g, base.b);
  return aiColor3D(0.8f, 0.8f, 0.8f);
}

struct Builder {
  const aiScene* ai;
  const ModelOptions& options;
  Model* model;
  std::string folder;
  std::vector<ModelTexture*> byMaterial;  // texture of each material, or null
  std::vector<bool> tried;
  aiVector3D centre;
  float scale = 1;

  ModelTexture* MaterialTexture(unsigned index);
  void Configure(Material* mat, const aiMaterial* src, ModelTexture* texture);
  ModelStatus Build(const aiMesh* src, const aiMatrix4x4& place, const std::vector<SourcePolygon>& polygons);
};

ModelTexture* Builder::MaterialTexture(unsigned index) {
  if (!options.textures || index >= ai->mNumMaterials) return nullptr;
  if (tried[index]) return byMaterial[index];
  tried[index] = true;
  aiString path;
  const aiMaterial* mat = ai->mMaterials[index];
  if (mat->GetTexture(aiTextureType_DIFFUSE, 0, &path) != AI_SUCCESS &&
      mat->GetTexture(aiTextureType_BASE_COLOR, 0, &path) != AI_SUCCESS)
    return nullptr;
  const char* reason = "not found";
  ModelTexture* texture = nullptr;
  if (const aiTexture* embedded = ai->GetEmbeddedTexture(path.C_Str())) {
    if (embedded->mHeight == 0) {
      texture = DecodeModelTexture(reinterpret_cast<const unsigned char*>(embedded->pcData),
                                   int(embedded->mWidth), options.maxTexture, &reason);
    } else {
      std::vector<unsigned char> rgba(size_t(embedded->mWidth) * embedded->mHeight * 4);
      for (size_t i = 0; i < size_t(embedded->mWidth) * embedded->mHeight; i++) {
        const aiTexel& t = embedded->pcData[i];
        rgba[4 * i] = t.r, rgba[4 * i + 1] = t.g, rgba[4 * i + 2] = t.b, rgba[4 * i + 3] = t.a;
      }
      texture =
          CreateModelTexture(rgba.data(), int(embedded->mWidth), int(embedded->mHeight), options.maxTexture);
      if (texture == nullptr) reason = "out of memory";
    }
  } else {
    std::string file = path.C_Str();
    for (char& c : file)
      if (c == '\\') c = '/';
    if (file.rfind("file://", 0) == 0) file.erase(0, 7);
    std::string full = !file.empty() && file[0] == '/' ? file : folder + file;
    struct stat st;
    if (stat(full.c_str(), &st) != 0) {
      // Files written on other systems often name textures by another case
      // or path: try the bare name beside the model.
      const size_t slash = file.rfind('/');
      const std::string beside = folder + (slash == std::string::npos ? file : file.substr(slash + 1));
      if (stat(beside.c_str(), &st) == 0) full = beside;
    }
    texture = LoadModelTexture(full.c_str(), options.maxTexture, &reason);
  }
  if (texture == nullptr) {
    model->warnings.push_back(std::string("texture ") + path.C_Str() + ": " +
                              (reason ? reason : "unreadable") + "; drawn without it");
  } else {
    model->textures.push_back(texture);
  }
  byMaterial[index] = texture;
  return texture;
}

void Builder::Configure(Material* mat, const aiMaterial* src, ModelTexture* texture) {
  const aiColor3D diffuse = Diffuse(src);
  aiColor3D emissive(0, 0, 0), found;
  if (src != nullptr && src->Get(AI_MATKEY_COLOR_EMISSIVE, found) == AI_SUCCESS) emissive = found;
  // A textured surface takes its colour from the texels; a plain one keeps a
  // little of its own colour where no light reaches.
  const float ambient = texture ? 40.0f : 0.0f;
  SetMaterialColor(mat, 0, ambient + 38.0f * diffuse.r, ambient + 38.0f * diffuse.g,
                   ambient + 38.0f * diffuse.b);
  SetMaterialColor(mat, 1, 255.0f * diffuse.r, 255.0f * diffuse.g, 255.0f * diffuse.b);
  SetMaterialColor(mat, 2, 255.0f * emissive.r, 255.0f * emissive.g, 255.0f * emissive.b);
  float opacity = 1;
  if (src != nullptr && src->Get(AI_MATKEY_OPACITY, opacity) == AI_SUCCESS && opacity > 0.05f &&
      opacity < 0.98f) {
    SetMaterialAlphaMode(mat, 2);
    SetMaterialAlphaLevel(mat, int32_t(opacity * 255.0f));
  }
  if (texture != nullptr) {
    SetMaterialTextureChain(mat, 0, &texture->chain, texture->option);
    SetMaterialTextureMode(mat, 0, 0x10);
  }
}

// One engine mesh per chunk. Both sides come from the mesh's cull mode, not
// from a second copy of each polygon: a polygon seen from behind is lit
// through the engine's back-side light routines, which turn its normals
// towards the camera, so the picture is the same at half the polygons.
ModelStatus Builder::Build(const aiMesh* src, const aiMatrix4x4& place,
                           const std::vector<SourcePolygon>& polygons) {
  // A mirroring placement turns the winding over.
  const bool mirrored = place.Determinant() < 0;
  ModelTexture* texture = src->HasTextureCoords(0) ? MaterialTexture(src->mMaterialIndex) : nullptr;
  const aiMaterial* material =
      src->mMaterialIndex < ai->mNumMaterials ? ai->mMaterials[src->mMaterialIndex] : nullptr;
  const aiColor3D diffuse = Diffuse(material);
  // Local index of each source vertex in the chunk being built, else -1.
  std::vector<int32_t> local(src->mNumVertices, -1);
  for (const MeshChunk& chunk : SplitPolygons(polygons, src->mNumVertices, options.vertexLimit)) {
    long long slots = 0;
    for (unsigned p : chunk.polygons) slots += polygons[p].corners == 4 ? 2 : 1;
    Mesh* mesh = CreateMesh(int32_t(chunk.vertices.size()), int32_t(slots), PackColor(diffuse));
    if (mesh == nullptr) return kModelNoMemory;
    for (size_t i = 0; i < chunk.vertices.size(); i++) {
      const aiVector3D p = place * src->mVertices[chunk.vertices[i]];
      // Right-handed file space to the engine's left-handed one: z turns over.
      SetMeshVertex(mesh, int32_t(i), (p.x - centre.x) * scale, (p.y - centre.y) * scale,
                    (centre.z - p.z) * scale);
    }
    for (size_t i = 0; i < chunk.vertices.size(); i++) local[chunk.vertices[i]] = int32_t(i);
    int32_t slot = 0;
    for (unsigned p : chunk.polygons) {
      const SourcePolygon& poly = polygons[p];
      int32_t v[4];
      float uv[8];
      for (int c = 0; c < poly.corners; c++) {
        // The z flip turns the winding over; a mirroring placement turns it back.
        const int k = mirrored ? c : poly.corners - 1 - c;
        v[c] = local[poly.v[k]];
        if (texture != nullptr) {
          const aiVector3D& t = src->mTextureCoords[0][poly.v[k]];
          uv[2 * c] = t.x, uv[2 * c + 1] = t.y;
        }
      }
      if (poly.corners == 4) {
        SetMeshQuadPolygon(mesh, slot, v[0], v[1], v[2], v[3], 0, 0);
        if (texture) SetMeshQuadTexCoords(mesh, slot, uv[0], uv[1], uv[2], uv[3], uv[4], uv[5], uv[6], uv[7]);
        slot += 2;
      } else {
        SetMeshTriPolygon(mesh, slot, v[0], v[1], v[2], 0, 0);
        if (texture) SetMeshTriTexCoords(mesh, slot, uv[0], uv[1], uv[2], uv[3], uv[4], uv[5]);
        slot += 1;
      }
    }
    Mesh* valid = ValidateMesh(mesh);
    if (valid == nullptr) {
      DeleteMesh(mesh);
      return kModelNoMemory;
    }
    SetMeshName(valid, std::string(src->mName.C_Str()).substr(0, 31).c_str());
    if (options.twoSided) SetMeshCullMode(valid, kCullNone);
    Configure(GetMeshDefaultMaterial(valid), material, texture);
    if (texture != nullptr) model->textured = true;
    model->meshes.push_back(valid);
    model->polygons += slots;
  }
  return kModelOk;
}

// Every mesh a scene takes in rebuilds the scene's sort area for all its
// polygons, and so does every mesh attached below another: one by one, a
// model of many meshes would cost meshes times polygons. Joined pairwise
// into a balanced tree, each polygon is counted once a level, and one
// assignment carries the whole tree into the scene. The meshes are drawn
// and lit as before: setters and lights reach a mesh's whole subtree.
Mesh* JoinIntoScene(Model* model, size_t from) {
  std::vector<Mesh*> roots(model->meshes.begin() + long(from), model->meshes.end());
  while (roots.size() > 1) {
    size_t kept = 0;
    for (size_t i = 0; i < roots.size(); i += 2) {
      if (i + 1 < roots.size()) AttachChildToNode(roots[i], roots[i + 1]);
      roots[kept++] = roots[i];
    }
    roots.resize(kept);
  }
  if (roots.empty() || AssignMeshToScene(model->scene, roots[0], 0) != nullptr)
    return roots.empty() ? nullptr : roots[0];
  DeleteMesh(roots[0]);
  model->meshes.resize(from);
  return nullptr;
}

// The PLY reader waits for its "end_header" line and never returns on a file
// that lacks one, so such a file is refused before the reader sees it.
bool PlyWithoutHeaderEnd(const char* path) {
  FILE* file = fopen(path, "rb");
  if (file == nullptr) return false;
  char buffer[4096];
  size_t have = fread(buffer, 1, sizeof buffer, file);
  bool refused = false;
  if (have >= 3 && strncasecmp(buffer, "ply", 3) == 0) {
    static const char kEnd[] = "end_header";
    constexpr size_t kKeep = sizeof kEnd - 2;  // a match may straddle two reads
    refused = true;
    while (refused && have > 0) {
      if (memmem(buffer, have, kEnd, sizeof kEnd - 1) != nullptr) refused = false;
      const size_t kept = have < kKeep ? have : kKeep;
      memmove(buffer, buffer + have - kept, kept);
      const size_t read = fread(buffer + kept, 1, sizeof buffer - kept, file);
      have = read > 0 ? kept + read : 0;
    }
  }
  fclose(file);
  return refused;
}

// Polygons (three corners or more) in the importer's scene.
long long PolygonsRead(const aiScene* ai) {
  long long polygons = 0;
  for (unsigned m = 0; m < ai->mNumMeshes; m++)
    for (unsigned f = 0; f < ai->mMeshes[m]->mNumFaces; f++)
      polygons += ai->mMeshes[m]->mFaces[f].mNumIndices >= 3;
  return polygons;
}

ModelStatus Fail(ModelStatus status, std::string* error, std::string message) {
  *error = std::move(message);
  return status;
}

}  // namespace

std::vector<MeshChunk> SplitPolygons(const std::vector<SourcePolygon>& polygons, unsigned sourceVertices,
                                     int vertexLimit) {
  std::vector<MeshChunk> chunks;
  std::vector<unsigned> stamp(sourceVertices, 0);  // chunk number + 1 that holds the vertex
  MeshChunk current;
  for (unsigned p = 0; p < polygons.size(); p++) {
    const SourcePolygon& poly = polygons[p];
    int fresh = 0;
    for (int c = 0; c < poly.corners; c++) fresh += stamp[poly.v[c]] != chunks.size() + 1;
    if (current.vertices.size() + fresh > size_t(vertexLimit) && !current.polygons.empty()) {
      chunks.push_back(std::move(current));
      current = MeshChunk();
    }
    for (int c = 0; c < poly.corners; c++) {
      if (stamp[poly.v[c]] == chunks.size() + 1) continue;
      stamp[poly.v[c]] = unsigned(chunks.size() + 1);
      current.vertices.push_back(poly.v[c]);
    }
    current.polygons.push_back(p);
  }
  if (!current.polygons.empty()) chunks.push_back(std::move(current));
  return chunks;
}

namespace {

// The importer's reading and cleaning steps; *out is the importer's scene.
ModelStatus ReadScene(Assimp::Importer& importer, const char* path, const ModelOptions& options,
                      const aiScene** out, std::string* error) {
  importer.SetPropertyFloat(AI_CONFIG_PP_GSN_MAX_SMOOTHING_ANGLE, 80.0f);
  const aiScene* ai = importer.ReadFile(path, 0);
  if (ai == nullptr)
    return Fail(kModelUnreadable, error, std::string(path) + ": " + importer.GetErrorString());
  // Sizes are checked before the cleaning steps, which take long on huge counts.
  long long vertices = 0;
  for (unsigned m = 0; m < ai->mNumMeshes; m++) vertices += ai->mMeshes[m]->mNumVertices;
  if (vertices > options.maxPolygons)
    return Fail(kModelTooBig, error,
                std::string(path) + ": " + std::to_string(vertices) + " vertices, more than the " +
                    std::to_string(options.maxPolygons) + " a scene can count");
  const aiScene* cleaned = FacesWellFormed(ai) ? importer.ApplyPostProcessing(kImportFlags) : nullptr;
  // The cleaning steps refuse some files outright that can still be drawn in part.
  ai = cleaned != nullptr ? cleaned : importer.ReadFile(path, aiProcess_FlipUVs);
  if (ai == nullptr)
    return Fail(kModelUnreadable, error, std::string(path) + ": " + importer.GetErrorString());
  *out = ai;
  return kModelOk;
}

// The importer's readers trust their files in places and can crash or loop
// on a damaged one. A child process reads the file first; only when it comes
// back whole does this process read it too.
ModelStatus TrialRead(const char* path, const ModelOptions& options, long long bytes, std::string* error) {
  const unsigned seconds = options.importSeconds != 0 ? options.importSeconds : unsigned(60 + (bytes >> 20));
  fflush(nullptr);
  const pid_t child = fork();
  if (child < 0) return kModelOk;  // no child to spare: read in this process alone
  if (child == 0) {
    // A handler of the host's own (a fuzzer's, say) would swallow the alarm.
    signal(SIGALRM, SIG_DFL);
    alarm(seconds);
    {
      Assimp::Importer importer;
      const aiScene* ai = nullptr;
      std::string ignored;
      ReadScene(importer, path, options, &ai, &ignored);
    }
    _exit(0);
  }
  // The parent keeps the deadline too, and a child past it is killed: none
  // is left behind busy on a file.
  int status = 0;
  const time_t deadline = time(nullptr) + time_t(seconds) + 1;
  for (;;) {
    const pid_t done = waitpid(child, &status, WNOHANG);
    if (done == child) break;
    if (done < 0 && errno != EINTR) return kModelOk;
    if (time(nullptr) > deadline) {
      kill(child, SIGKILL);
      waitpid(child, &status, 0);
      return Fail(
          kModelUnreadable, error,
          std::string(path) + ": the importer did not finish within " + std::to_string(seconds) + " s");
    }
    usleep(2000);
  }
  if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return kModelOk;
  std::string why = "the importer failed on this file";
  if (WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM)
    why = "the importer did not finish within " + std::to_string(seconds) + " s";
  else if (WIFSIGNALED(status))
    why = std::string("the importer crashed on this file (") + strsignal(WTERMSIG(status)) + ")";
  return Fail(kModelUnreadable, error, std::string(path) + ": " + why);
}

}  // namespace

ModelStatus LoadModel(const char* path, const ModelOptions& options, Model* model, std::string* error) {
  *model = Model();
  struct stat st;
  if (stat(path, &st) != 0) return Fail(kModelUnreadable, error, std::string(path) + ": no such file");
  if (!S_ISREG(st.st_mode)) return Fail(kModelUnreadable, error, std::string(path) + ": not a file");
  if (PlyWithoutHeaderEnd(path))
    return Fail(kModelUnreadable, error, std::string(path) + ": PLY header without end_header");
  // Our own readers come first for OBJ, PLY and STL: they read what
  // assimp's drop (OBJ corners of four indices, PLY strips), read the file
  // once and in this process. A file ours refuses goes to assimp, which reads
  // every other format, in a child process first. A PLY header that ours
  // finds unended is refused outright: assimp's reader can loop on it.
  std::string ext = strrchr(path, '.') != nullptr ? strrchr(path, '.') + 1 : "";
  for (char& c : ext) c = char(c >= 'A' && c <= 'Z' ? c + 32 : c);
  // A header's counts too big for a scene are refused before any reader
  // allocates for them (assimp's OFF reader takes most of a minute to). An
  // OBJ has no header: its faces are counted only if assimp has to read it.
  bool strips = false;
  long long vertices = -1, declared = -1;
  auto countDeclared = [&]() {
    declared = DeclaredPolygons(path, &strips, &vertices);
    if (vertices <= options.maxPolygons && declared <= options.maxPolygons) return kModelOk;
    return Fail(kModelTooBig, error,
                std::string(path) + ": " + std::to_string(vertices > declared ? vertices : declared) +
                    (vertices > declared ? " vertices" : " polygons") + ", more than the " +
                    std::to_string(options.maxPolygons) + " a scene can count");
  };
  if (ext != "obj" && countDeclared() != kModelOk) return kModelTooBig;
  OwnScene ownScene;
  std::string ownError;
  if (ext == "obj" || ext == "ply" || ext == "stl") {
    const ReadProgress progress{options.progress, options.progressUser};
    if (options.progress != nullptr) options.progress(options.progressUser, 0, (long long)st.st_size, 0);
    ownScene = ReadOwnModel(path, &ownError, options.progress != nullptr ? &progress : nullptr);
    if (options.progress != nullptr) options.progress(options.progressUser, -1, 0, 0);  // done
    if (ownScene == nullptr && (strips || ownError == kPlyHeaderUnended))
      return Fail(kModelUnreadable, error, std::string(path) + ": " + ownError);
    if (ownScene == nullptr)
      model->warnings.push_back("our reader refused the file (" + ownError + "); read by assimp");
  }
  Assimp::Importer importer;
  const aiScene* ai = ownScene.get();
  if (ai == nullptr) {
    if (ext == "obj" && countDeclared() != kModelOk) return kModelTooBig;
    ModelStatus read = TrialRead(path, options, (long long)st.st_size, error);
    if (read == kModelOk) read = ReadScene(importer, path, options, &ai, error);
    const long long got = read == kModelOk ? PolygonsRead(ai) : 0;
    // Neither reader has a polygon to give: ours says why.
    if (!ownError.empty() && got == 0)
      return Fail(kModelUnreadable, error, std::string(path) + ": " + ownError);
    if (read != kModelOk) return read;
    if (declared > got) {
      model->dropped = declared - got;
      model->warnings.push_back(std::to_string(model->dropped) + " of the " + std::to_string(declared) +
                                " polygons the file declares were not read (assimp's reader skipped them)");
    }
  }

  // Count first: refuse before allocating anything.
  std::vector<std::vector<SourcePolygon>> drawable(ai->mNumMeshes);
  long long slots = 0;
  Bounds bounds;
  for (unsigned m = 0; m < ai->mNumMeshes; m++) drawable[m] = DrawablePolygons(ai->mMeshes[m]);
  // The faces of our own scene, a block each, are not needed again: they
  // go before the engine's meshes are made, which lowers the peak.
  if (ownScene != nullptr) FreeOwnFaces(ownScene.get());
  std::vector<Instance> instances;
  aiMatrix4x4 up;
  if (options.zUp) aiMatrix4x4::RotationX(-1.5707963f, up);
  CollectInstances(ai, ai->mRootNode, up, 0, &instances);
  for (const Instance& in : instances) {
    const aiMesh* mesh = ai->mMeshes[in.mesh];
    for (const SourcePolygon& p : drawable[in.mesh]) {
      slots += p.corners == 4 ? 2 : 1;
      for (int c = 0; c < p.corners; c++) bounds.Add(in.place * mesh->mVertices[p.v[c]]);
    }
  }
  if (slots == 0) return Fail(kModelEmpty, error, std::string(path) + ": no polygons to draw");
  if (slots > options.maxPolygons)
    return Fail(kModelTooBig, error,
                std::string(path) + ": " + std::to_string(slots) + " triangles, more than the " +
                    std::to_string(options.maxPolygons) + " a scene can count");

  Builder b{ai,
            options,
            model,
            "",
            std::vector<ModelTexture*>(ai->mNumMaterials, nullptr),
            std::vector<bool>(ai->mNumMaterials, false)};
  const std::string p = path;
  b.folder = p.rfind('/') == std::string::npos ? "" : p.substr(0, p.rfind('/') + 1);
  b.centre = (bounds.low + bounds.high) * 0.5f;
  const float radius = (bounds.high - bounds.low).Length() * 0.5f;
  b.scale = radius > 0 && isfinite(radius) ? kModelRadius / radius : 1.0f;
  model->scene = CreateScene();
  if (model->scene == nullptr) return Fail(kModelNoMemory, error, "out of memory");
  // A source mesh's polygons go once its last instance is built.
  std::vector<size_t> lastUse(ai->mNumMeshes, 0);
  for (size_t i = 0; i < instances.size(); i++) lastUse[instances[i].mesh] = i;
  const bool simplify = options.simplifyTo > 0 && slots > options.simplifyTo;
  std::vector<std::vector<SourcePolygon>> simpler(simplify ? ai->mNumMeshes : 0);
  const auto refused = [&](ModelStatus status, size_t from) {
    JoinIntoScene(model, from);  // the scene takes what was built, and frees it
    FreeModel(model);
    return Fail(status, error, std::string(path) + ": the engine refused a mesh (out of memory)");
  };
  for (size_t i = 0; i < instances.size(); i++) {
    const Instance& in = instances[i];
    if (drawable[in.mesh].empty()) continue;
    if (simplify && simpler[in.mesh].empty())
      simpler[in.mesh] = SimplifyPolygons(ai->mMeshes[in.mesh], drawable[in.mesh],
                                          double(options.simplifyTo) / double(slots));
    const ModelStatus status = b.Build(ai->mMeshes[in.mesh], in.place, drawable[in.mesh]);
    if (lastUse[in.mesh] == i) std::vector<SourcePolygon>().swap(drawable[in.mesh]);
    if (status != kModelOk) return refused(status, 0);
  }
  model->full = JoinIntoScene(model, 0);
  if (model->full == nullptr) return refused(kModelNoMemory, 0);
  if (simplify) {
    // The lighter copy: a tree of its own beside the full one, hidden.
    const size_t from = model->meshes.size();
    const long long polygons = model->polygons;
    for (const Instance& in : instances) {
      if (simpler[in.mesh].empty()) continue;
      const ModelStatus status = b.Build(ai->mMeshes[in.mesh], in.place, simpler[in.mesh]);
      if (status != kModelOk) return refused(status, from);
    }
    model->simplePolygons = model->polygons - polygons;
    model->polygons = polygons;
    model->simple = JoinIntoScene(model, from);
    if (model->simple == nullptr) return refused(kModelNoMemory, from);
    HideMesh(model->simple);
  }
  return kModelOk;
}

void ShowReading(void* user, long long bytesRead, long long bytesTotal, long long triangles) {
  ReadingLine* line = static_cast<ReadingLine*>(user);
  timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  const double t = double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
  if (line->start == 0) line->start = t;
  if (bytesRead < 0) {  // the reading ended
    if (line->shown) fputc('\n', stderr);
    *line = ReadingLine();
    return;
  }
  if (t - line->start < 1.0 || !isatty(2)) return;
  line->shown = true;
  fprintf(stderr, "\rreading: %3d%% of %.1f MB, %lld triangles",
          int(100 * bytesRead / (bytesTotal ? bytesTotal : 1)), double(bytesTotal) / 1048576.0, triangles);
  fflush(stderr);
}

bool ModelExtensionKnown(const char* path) {
  const char* dot = strrchr(path, '.');
  if (dot == nullptr || strchr(dot, '/') != nullptr) return false;
  Assimp::Importer importer;
  return importer.IsExtensionSupported(dot) || strcasecmp(dot, ".ply") == 0 || strcasecmp(dot, ".obj") == 0;
}

void FreeModel(Model* model) {
  if (model->scene != nullptr) DeleteWholeScene(model->scene);
  for (ModelTexture* t : model->textures) FreeModelTexture(t);
  *model = Model();
}
