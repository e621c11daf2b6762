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
  Material source{};

  int Pick(int n) { return std::uniform_int_distribution<int>(0, n - 1)(rng); }
  uint32_t Tag() { return uint32_t(Pick(3) == 0); }
  template <class T>
  T* Any(const std::vector<T*>& v) { return v.empty() ? nullptr : v[size_t(Pick(int(v.size())))]; }
  template <class T>
  static void Drop(std::vector<T*>& v, const T* p) { v.erase(std::remove(v.begin(), v.end(), p), v.end()); }
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
      void* node = todo.back();
      e3d::NodeLinks l = e3d::LinksOf(node);
      todo.pop_back();
      todo.insert(todo.end(), *l.children, *l.children + *l.childCount);
      Mesh* sub = static_cast<Mesh*>(node);
      if (e3d::NodeIsMesh(*l.kind) && sub->hostObject == 0) Drop(meshes, sub);
    }
  }
  void DeleteSceneAndForget(Scene* s, bool whole) {
    for (Mesh* m = s->firstMesh; m != nullptr; m = m->nextInScene)
      if (whole || m->hostObject == 0) ForgetSubtree(m);
    for (Camera* c = s->firstCamera; c != nullptr; c = c->nextCamera)
      if (whole || c->hostObject == 0) Drop(cameras, c);
    for (Material* m = s->firstMaterial; m != nullptr; m = m->nextMaterial)
      if (whole || m->keep == 0) Drop(materials, m);
    for (Light* l = s->firstLight; l != nullptr; l = l->nextLight)
      if (whole || l->hostObject == 0) Drop(lights, l);
    Drop(scenes, s);
    whole ? DeleteWholeScene(s) : DeleteScene(s);
  }

  // One random operation, its answer checked against the model kept here.
  // Lights and materials are kept in one scene at most, as hosts must.
  void Step() {
    Scene* s = Any(scenes);
    Mesh *m = Any(meshes), *m2 = Any(meshes);
    Camera* c = Any(cameras);
    Light* l = Any(lights);
    Material* mat = Any(materials);
    Skeleton* k = Any(skeletons);
    Scene* held = l ? SceneOf<e3d::GetSceneLightIndex>(l) : nullptr;
    bool listed = mat != nullptr && SceneOf<e3d::GetSceneMaterialIndex>(mat) != nullptr;
    int32_t at = s && c ? e3d::GetSceneCameraIndex(s, c) : -1;
    Camera* active = s ? GetActivedSceneCamera(s) : nullptr;
    switch (Pick(26)) {
      case 0: if (meshes.size() < 16) meshes.push_back(Polygons(1 + Pick(9), Tag())); break;
      case 1: if (m && Pick(2)) { ForgetSubtree(m); DeleteMesh(m); } break;
      case 2: case 3: if (m && s) {
        bool child = m->parent != nullptr && e3d::NodeIsMesh(e3d::NodeKindOf(m->parent));
        EXPECT_EQ(AssignMeshToScene(s, m, uint8_t(Pick(2))), m->ownerScene || child ? nullptr : m);
      } break;
      case 4: if (m && s) {
        EXPECT_EQ(RemoveMeshFromScene(s, m, uint8_t(Pick(2))), m->ownerScene == s ? 1 : 0);
      } break;
      case 5: case 6: if (m) {
        bool cycle = false;
        for (void* p = m; p != nullptr; p = *e3d::LinksOf(p).parent) cycle |= p == m2;
        EXPECT_EQ(AttachChildToNode(m, m2), cycle ? 0 : 1);
      } break;
      case 7: if (m && c) { EXPECT_EQ(AttachChildToNode(m, c), 1); } break;  // cameras stay leaves
      case 8: if (m && m->childCount > 0) {
        void* node = m->children[Pick(m->childCount)];
        EXPECT_EQ(DetachChildFromNode(m, node), 1);
        EXPECT_EQ(DetachChildFromNode(m, node), 0);
      } break;
      case 9: if (cameras.size() < 8) (cameras.emplace_back(NewCamera()))->hostObject = Tag(); break;
      case 10: if (c && s) { Drop(cameras, c); DeleteCamera(c); } break;
      case 11: if (c && s) {
        EXPECT_EQ(AssignCameraToScene(s, c), SceneOf<e3d::GetSceneCameraIndex>(c) ? 0 : 1);
      } break;
      case 12: if (c && s) {
        bool last = at >= 0 && c->nextCamera == nullptr;
        EXPECT_EQ(RemoveCameraFromScene(s, c), at >= 0 ? 1 : 0);
        // The active camera stays active, unless the list was emptied.
        EXPECT_TRUE(at < 0 || last || active == nullptr || active == c || GetActivedSceneCamera(s) == active);
        EXPECT_TRUE(!last || s->firstCamera == nullptr);
      } break;
      case 13: if (c && s) {
        EXPECT_EQ(SetActivedSceneCamera(s, c), at);
        EXPECT_TRUE(at < 0 || GetActivedSceneCamera(s) == c);
      } break;
      case 14: if (s && s->firstCamera) {
        Camera* was = SwitchActivedSceneCamera(s);
        EXPECT_TRUE(active == nullptr || was == active);
      } break;
      case 15: if (lights.size() < 6) (lights.emplace_back(Omni()))->hostObject = Tag(); break;
      case 16: if (l) { Drop(lights, l); DeleteLight(l); } break;
      case 17: if (l && s && (held == nullptr || held == s)) {
        EXPECT_EQ(AssignLightToScene(s, l, uint8_t(Pick(2))), held == s ? 0 : 1);
      } break;
      case 24: if (l && s) { EXPECT_EQ(RemoveLightFromScene(s, l), held == s ? 1 : 0); } break;
      case 18: if (l && m && (held == nullptr || held == m->ownerScene)) {
        AssignLightToMesh(l, m);  // brings the light into the mesh's scene
        EXPECT_TRUE(m->ownerScene == nullptr || SceneOf<e3d::GetSceneLightIndex>(l) == m->ownerScene);
      } break;
      case 19: if (scenes.size() < 4) scenes.push_back(CreateScene()); break;
      case 20: if (s && Pick(4) == 0) DeleteSceneAndForget(s, Pick(2)); break;
      case 21: if (materials.size() < 6) (materials.emplace_back(CreateMaterial(&source)))->keep = Tag(); break;
      case 25: if (mat && !listed) { Drop(materials, mat); DeleteMaterial(mat); } break;
      case 22: if (s && mat) {  // never given twice
        int32_t want = listed ? e3d::GetSceneMaterialIndex(s, mat) >= 0 : 1;
        EXPECT_EQ(listed ? RemoveMaterialFromScene(s, mat) : AssignMaterialToScene(s, mat), want);
      } break;
      case 23: if (s && Pick(2)) {
        EXPECT_EQ(AssignSkeletonToScene(s, k), !SceneOf<e3d::GetSceneSkeletonIndex>(k));
      } else if (s) {
        RemoveSkeletonFromScene(s, k);
      } break;
    }
  }

  void ExpectAllConsistent() {
    Scene* chain = e3d::firstScene;  // the scenes in creation order, linked both ways
    for (Scene* s : scenes) {
      EXPECT_TRUE(s == chain && (s == e3d::firstScene ? s->prevScene == nullptr : s->prevScene->nextScene == s));
      chain = chain ? chain->nextScene : nullptr;
    }
    EXPECT_TRUE(chain == nullptr && e3d::lastScene == (scenes.empty() ? nullptr : scenes.back()));
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
  for (int i = 0; i < 3; i++) skeletons.push_back(CreateSkeleton());
  for (int step = 0; step < 4000 && !HasFailure(); step++) {
    Step();
    ExpectAllConsistent();
  }
  while (!scenes.empty()) DeleteSceneAndForget(scenes.back(), true);
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
