// Random sequences of scene and hierarchy operations over several scenes,
// with every list, count and sort area checked after each step.
#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

#include "objects/hierarchy.h"
#include "scene_fixture.h"

namespace {

class SceneOpsTest : public SceneFixture {
 protected:
  std::mt19937 rng{20240611u};
  std::vector<Scene*> scenes;
  std::vector<Mesh*> meshes;
  std::vector<Camera*> cameras;
  std::vector<Material*> materials;
  std::vector<Light*> lights;
  std::vector<Skeleton*> skeletons;
  Material source;

  int Pick(int n) { return std::uniform_int_distribution<int>(0, n - 1)(rng); }
  uint32_t Tag() { return uint32_t(Pick(3) == 0); }
  template <class T>
  T* Any(const std::vector<T*>& v) {
    return v.empty() ? nullptr : v[size_t(Pick(int(v.size())))];
  }
  template <class T>
  static void Drop(std::vector<T*>& v, const T* p) {
    v.erase(std::remove(v.begin(), v.end(), p), v.end());
  }
  template <auto Index, class T>
  Scene* SceneOf(const T* object) const {
    for (Scene* s : scenes)
      if (Index(s, object) >= 0) return s;
    return nullptr;
  }

  // Deleting a mesh takes its subtree apart and deletes the untagged meshes in it.
  void ForgetSubtree(Mesh* mesh) {
    Drop(meshes, mesh);
    std::vector<void*> todo(mesh->children, mesh->children + mesh->childCount);
    while (!todo.empty()) {
      e3d::NodeLinks l = e3d::LinksOf(todo.back());
      Mesh* node = static_cast<Mesh*>(todo.back());
      todo.pop_back();
      todo.insert(todo.end(), *l.children, *l.children + *l.childCount);
      if (e3d::NodeIsMesh(*l.kind) && node->hostObject == 0) Drop(meshes, node);
    }
  }
  void ForgetSceneObjects(Scene* s, bool whole) {
    for (Mesh* m = s->firstMesh; m != nullptr; m = m->nextInScene)
      if (whole || m->hostObject == 0) ForgetSubtree(m);
    for (Camera* c = s->firstCamera; c != nullptr; c = c->nextCamera)
      if (whole || c->hostObject == 0) Drop(cameras, c);
    for (Material* m = s->firstMaterial; m != nullptr; m = m->nextMaterial)
      if (whole || m->keep == 0) Drop(materials, m);
    for (Light* l = s->firstLight; l != nullptr; l = l->nextLight)
      if (whole || l->hostObject == 0) Drop(lights, l);
    Drop(scenes, s);
  }

  void MeshStep(Scene* s, Mesh* m, Mesh* m2, Camera* c) {
    int op = Pick(10);
    if (op < 2 && meshes.size() < 16) meshes.push_back(Polygons(1 + Pick(9), Tag()));
    if (m == nullptr) return;
    bool child = m->parent != nullptr && e3d::NodeIsMesh(e3d::NodeKindOf(m->parent));
    if (op == 2 && Pick(2) == 0) {
      ForgetSubtree(m);
      DeleteMesh(m);
    } else if ((op == 3 || op == 4) && s != nullptr) {
      bool free = m->ownerScene == nullptr && !child;
      EXPECT_EQ(AssignMeshToScene(s, m, uint8_t(Pick(2))), free ? m : nullptr);
    } else if (op == 5 && s != nullptr) {
      EXPECT_EQ(RemoveMeshFromScene(s, m, uint8_t(Pick(2))), m->ownerScene == s ? 1 : 0);
    } else if (op == 6 || op == 7) {
      bool cycle = false;
      for (void* p = m; p != nullptr; p = *e3d::LinksOf(p).parent) cycle |= p == m2;
      EXPECT_EQ(AttachChildToNode(m, m2), cycle ? 0 : 1);
    } else if (op == 8 && c != nullptr) {
      EXPECT_EQ(AttachChildToNode(m, c), 1);  // cameras stay leaves here
    } else if (op == 9 && m->childCount > 0) {
      void* node = m->children[Pick(m->childCount)];
      EXPECT_EQ(DetachChildFromNode(m, node), 1);
      EXPECT_EQ(DetachChildFromNode(m, node), 0);
    }
  }

  void CameraStep(Scene* s, Camera* c) {
    int op = Pick(6);
    if (op == 0 && cameras.size() < 8) {
      cameras.push_back(NewCamera());
      cameras.back()->hostObject = Tag();
    }
    if (c == nullptr || s == nullptr) return;
    int32_t at = e3d::GetSceneCameraIndex(s, c);
    Camera* active = GetActivedSceneCamera(s);
    if (op == 1) {
      Drop(cameras, c);
      DeleteCamera(c);
    } else if (op == 2) {
      EXPECT_EQ(AssignCameraToScene(s, c), SceneOf<e3d::GetSceneCameraIndex>(c) ? 0 : 1);
    } else if (op == 3) {
      bool last = at >= 0 && c->nextCamera == nullptr;
      EXPECT_EQ(RemoveCameraFromScene(s, c), at >= 0 ? 1 : 0);
      // The active camera stays active, unless the list was emptied.
      if (last) active = nullptr;
      EXPECT_TRUE(at < 0 || active == nullptr || active == c || GetActivedSceneCamera(s) == active);
      EXPECT_TRUE(!last || s->firstCamera == nullptr);
    } else if (op == 4) {
      EXPECT_EQ(SetActivedSceneCamera(s, c), at);
      EXPECT_TRUE(at < 0 || GetActivedSceneCamera(s) == c);
    } else if (s->firstCamera != nullptr) {
      Camera* was = SwitchActivedSceneCamera(s);
      EXPECT_TRUE(active == nullptr || was == active);
    }
  }

  // Lights and materials are kept in one scene at most, as hosts must.
  void LightStep(Scene* s, Mesh* m) {
    Light* l = Any(lights);
    int op = Pick(5);
    if (op == 0 && lights.size() < 6) {
      lights.push_back(Omni());
      lights.back()->hostObject = Tag();
    }
    if (l == nullptr) return;
    Scene* held = SceneOf<e3d::GetSceneLightIndex>(l);
    if (op == 1) {
      Drop(lights, l);
      DeleteLight(l);
    } else if (op == 2 && s != nullptr && (held == nullptr || held == s)) {
      EXPECT_EQ(AssignLightToScene(s, l, uint8_t(Pick(2))), held == s ? 0 : 1);
    } else if (op == 3 && s != nullptr) {
      EXPECT_EQ(RemoveLightFromScene(s, l), held == s ? 1 : 0);
    } else if (op == 4 && m != nullptr && (held == nullptr || held == m->ownerScene)) {
      AssignLightToMesh(l, m);  // brings the light into the mesh's scene
      EXPECT_TRUE(m->ownerScene == nullptr || SceneOf<e3d::GetSceneLightIndex>(l) == m->ownerScene);
    }
  }

  void OtherStep(Scene* s) {
    Material* mat = Any(materials);
    Skeleton* k = Any(skeletons);
    bool listed = mat != nullptr && SceneOf<e3d::GetSceneMaterialIndex>(mat) != nullptr;
    switch (Pick(8)) {
      case 0:
        if (scenes.size() < 4) scenes.push_back(CreateScene());
        break;
      case 1:
        if (s != nullptr && Pick(4) == 0) {
          bool whole = Pick(2) == 0;
          ForgetSceneObjects(s, whole);
          whole ? DeleteWholeScene(s) : DeleteScene(s);
        }
        break;
      case 2:
        if (materials.size() < 6) {
          materials.push_back(CreateMaterial(&source));
          materials.back()->keep = Tag();
        }
        break;
      case 3:
        if (mat != nullptr && !listed) {
          Drop(materials, mat);
          DeleteMaterial(mat);
        }
        break;
      case 4:
        if (s != nullptr && mat != nullptr) {
          int32_t here = e3d::GetSceneMaterialIndex(s, mat) >= 0;
          EXPECT_EQ(listed ? RemoveMaterialFromScene(s, mat) : AssignMaterialToScene(s, mat),
                    listed ? here : 1);  // never given twice
        }
        break;
      case 5:
        if (s != nullptr) {
          int32_t free = SceneOf<e3d::GetSceneSkeletonIndex>(k) == nullptr;
          EXPECT_EQ(AssignSkeletonToScene(s, k), free);
        }
        break;
      case 6:
        if (s != nullptr) RemoveSkeletonFromScene(s, k);
        break;
      case 7:
        if (s != nullptr) SetSceneViewport(s, nullptr);
        break;
    }
  }

  void ExpectAllConsistent() {
    for (Scene* s : scenes) {
      ExpectConsistent(s);
      EXPECT_EQ(SceneAreaBytes(s), Bytes(s->polygonCapacity));
    }
    for (Mesh* m : meshes) {
      int listed = 0;
      for (Scene* s : scenes)
        for (Mesh* p = s->firstMesh; p != nullptr; p = p->nextInScene) listed += p == m;
      EXPECT_EQ(listed, m->ownerScene != nullptr ? 1 : 0);
      EXPECT_EQ(m->sortPolygonCount, TreePolygons(m));
      bool root = e3d::MeshTreeRoot(m) == m;
      EXPECT_EQ(OwnAreaBytes(m), root && m->ownerScene == nullptr ? Bytes(m->sortPolygonCount) : 0);
      for (int32_t i = 0; i < m->childCount; i++) EXPECT_EQ(*e3d::LinksOf(m->children[i]).parent, m);
    }
  }
};

TEST_F(SceneOpsTest, RandomOperationsKeepEveryListAndAreaInStep) {
  std::memset(&source, 0, sizeof source);
  for (int i = 0; i < 3; i++) skeletons.push_back(CreateSkeleton());
  for (int step = 0; step < 4000 && !HasFailure(); step++) {
    Scene* s = Any(scenes);
    Mesh* m = Any(meshes);
    Camera* c = Any(cameras);
    switch (Pick(5)) {
      case 0: CameraStep(s, c); break;
      case 1: LightStep(s, m); break;
      case 2: OtherStep(s); break;
      default: MeshStep(s, m, Any(meshes), c); break;
    }
    ExpectAllConsistent();
  }
  while (!scenes.empty()) {
    Scene* s = scenes.back();
    ForgetSceneObjects(s, true);
    DeleteWholeScene(s);
  }
  while (!meshes.empty()) {
    Mesh* m = meshes.back();
    ForgetSubtree(m);
    DeleteMesh(m);
  }
  for (Camera* c : cameras) DeleteCamera(c);
  for (Material* m : materials) DeleteMaterial(m);
  for (Light* l : lights) DeleteLight(l);
  for (Skeleton* k : skeletons) DeleteSkeleton(k);
}

}  // namespace
