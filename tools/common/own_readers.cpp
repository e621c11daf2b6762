// Our own readers' parts as assimp's scene records, so that one builder
// serves both; and the file mapped, not copied.
#include "own_readers.h"

#include <assimp/material.h>
#include <assimp/scene.h>
#include <fcntl.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Formats without materials (PLY, STL) draw in white, as assimp reads them.
OwnScene MakeScene(ModelParts& model) {
  std::vector<ModelPart>& parts = model.parts;
  std::vector<ModelMaterial>& materials = model.materials;
  if (materials.empty()) materials.push_back({"", Color3(1, 1, 1)});
  OwnScene scene(new aiScene());
  scene->mRootNode = new aiNode();
  // The scene frees its arrays only when their counts are not 0.
  if (!materials.empty()) scene->mMaterials = new aiMaterial*[materials.size()];
  for (const ModelMaterial& m : materials) {
    aiMaterial* mat = new aiMaterial();
    const aiColor3D diffuse(m.diffuse.r, m.diffuse.g, m.diffuse.b);
    mat->AddProperty(&diffuse, 1, AI_MATKEY_COLOR_DIFFUSE);
    mat->AddProperty(&m.opacity, 1, AI_MATKEY_OPACITY);
    if (!m.texture.empty()) {
      const aiString path(m.texture);
      mat->AddProperty(&path, AI_MATKEY_TEXTURE_DIFFUSE(0));
    }
    scene->mMaterials[scene->mNumMaterials++] = mat;
  }
  scene->mMeshes = new aiMesh*[parts.size()];
  scene->mRootNode->mMeshes = new unsigned[parts.size()];
  for (size_t i = 0; i < parts.size(); i++) {
    ModelPart& part = parts[i];
    if (part.sizes.empty()) continue;
    bool mapped = false;  // texture coordinates that are not all 0
    for (const Vec3& uv : part.uvs) mapped = mapped || uv.x != 0 || uv.y != 0;
    if (!mapped) part.uvs.clear();
    aiMesh* mesh = new aiMesh();
    mesh->mMaterialIndex = unsigned(i < materials.size() ? i : 0);
    mesh->mPrimitiveTypes = aiPrimitiveType_TRIANGLE | aiPrimitiveType_POLYGON;
    mesh->mNumVertices = unsigned(part.vertices.size());
    mesh->mVertices = new aiVector3D[part.vertices.size()];
    for (size_t v = 0; v < part.vertices.size(); v++)
      mesh->mVertices[v] = aiVector3D(part.vertices[v].x, part.vertices[v].y, part.vertices[v].z);
    if (!part.uvs.empty()) {
      mesh->mTextureCoords[0] = new aiVector3D[part.uvs.size()];
      for (size_t v = 0; v < part.uvs.size(); v++)
        mesh->mTextureCoords[0][v] = aiVector3D(part.uvs[v].x, part.uvs[v].y, part.uvs[v].z);
      mesh->mNumUVComponents[0] = 2;
    }
    // Every face's corners in one block, owned by the first face: a block a
    // face cost more than the reading. FreeOwnFaces undoes it.
    mesh->mFaces = new aiFace[part.sizes.size()];
    unsigned* block = new unsigned[part.corners.size()];
    std::copy(part.corners.begin(), part.corners.end(), block);
    for (size_t f = 0; f < part.sizes.size(); f++) {
      aiFace& face = mesh->mFaces[mesh->mNumFaces++];
      face.mNumIndices = part.sizes[f];
      face.mIndices = block;
      block += part.sizes[f];
    }
    scene->mRootNode->mMeshes[scene->mRootNode->mNumMeshes++] = scene->mNumMeshes;
    scene->mMeshes[scene->mNumMeshes++] = mesh;
    part = ModelPart();  // the copy in the scene is all that is needed now
  }
  return scene;
}

}  // namespace

OwnScene ReadOwnModelBytes(std::string_view bytes, const char* format, const std::string& folder,
                           std::string* error, const ReadProgress* progress) {
  ModelParts model;
  if (!ReadModelParts(bytes, format, folder, &model, error, progress)) return nullptr;
  return MakeScene(model);
}

void FreeOwnFaces(aiScene* scene) {
  for (unsigned m = 0; m < scene->mNumMeshes; m++) {
    aiMesh* mesh = scene->mMeshes[m];
    if (mesh->mFaces == nullptr) continue;
    unsigned* block = mesh->mNumFaces > 0 ? mesh->mFaces[0].mIndices : nullptr;
    for (unsigned f = 0; f < mesh->mNumFaces; f++) mesh->mFaces[f].mIndices = nullptr;
    delete[] block;
    delete[] mesh->mFaces;
    mesh->mFaces = nullptr;
    mesh->mNumFaces = 0;
  }
}

void OwnSceneFree::operator()(aiScene* scene) const {
  if (scene == nullptr) return;
  FreeOwnFaces(scene);
  delete scene;
}

// A regular file is mapped, not copied: its pages come straight from the
// file cache. Anything else (a pipe, a device) is read.
OwnScene ReadOwnModel(const char* path, std::string* error, const ReadProgress* progress) {
  const int fd = open(path, O_RDONLY);
  struct stat st;
  if (fd >= 0 && fstat(fd, &st) == 0 && S_ISREG(st.st_mode) && st.st_size > 0) {
    void* map = mmap(nullptr, size_t(st.st_size), PROT_READ, MAP_PRIVATE, fd, 0);
    close(fd);
    if (map != MAP_FAILED) {
      madvise(map, size_t(st.st_size), MADV_SEQUENTIAL);
      OwnScene scene = ReadOwnModelBytes(std::string_view(static_cast<const char*>(map), size_t(st.st_size)),
                                         Extension(path).c_str(), Folder(path), error, progress);
      munmap(map, size_t(st.st_size));
      return scene;
    }
  } else if (fd >= 0) {
    close(fd);
  }
  std::string bytes;
  if (!ReadFile(path, &bytes)) {
    *error = "cannot be read";
    return nullptr;
  }
  return ReadOwnModelBytes(bytes, Extension(path).c_str(), Folder(path), error, progress);
}
