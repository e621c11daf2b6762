// Any sequence of object calls with valid handles: meshes, generators,
// materials, textures, lights, cameras, scenes, hierarchies and skeletons
// created, assigned, removed, attached, detached, tagged and deleted, any of
// them with one allocation failing. After every call the scene lists link
// both ways, every listed mesh belongs to its scene, every sort area is sized
// by the polygons it serves and every hierarchy link is mutual; at the end,
// with everything deleted, no block is left.
#include <algorithm>
#include <cstdint>
#include <vector>

#include "engine/registry.h"
#include "engine3d.h"
#include "fuzz_host.h"
#include "fuzz_input.h"
#include "fuzz_mesh.h"
#include "objects/camera.h"
#include "objects/hierarchy.h"
#include "objects/light.h"
#include "objects/material.h"
#include "objects/mesh.h"
#include "objects/node_helpers.h"
#include "objects/scene.h"
#include "objects/skeleton.h"
#include "viewport/viewport.h"

namespace {

using namespace e3d;

template <class T>
T* Pick(fuzz::Input& in, const std::vector<T*>& pool) {
  return pool.empty() ? nullptr : pool[in.Range(0, static_cast<int32_t>(pool.size()) - 1)];
}
template <class T>
void Drop(std::vector<T*>& pool, const T* item) {
  pool.erase(std::remove(pool.begin(), pool.end(), item), pool.end());
}
// The host's way to delete: unlink what the delete leaves linked, delete, forget.
template <class T, class Unlink, class Delete>
void DeleteFrom(std::vector<T*>& pool, T* item, Unlink unlink, Delete del) {
  if (item == nullptr) return;
  unlink(item);
  del(item);
  Drop(pool, item);
}
template <class T>
bool Holds(const std::vector<T*>& pool, const T* item) {
  return std::find(pool.begin(), pool.end(), item) != pool.end();
}

struct World {
  std::vector<Mesh*> meshes;
  std::vector<Material*> materials;
  std::vector<Light*> lights;
  std::vector<Camera*> cameras;
  std::vector<Scene*> scenes;
  std::vector<Skeleton*> skeletons;
  std::vector<Bone*> bones, freeBones;  // freeBones: not attached anywhere yet
  std::vector<SurfaceDesc*> textures;
  Viewport* viewports[2];
  uint16_t pixels[8 * 8];

  // Every node of the hierarchy: meshes, cameras and lights.
  void* Node(fuzz::Input& in) {
    switch (in.U8() % 4) {
      case 0: return Pick(in, cameras);
      case 1: return Pick(in, lights);
      default: return Pick(in, meshes);
    }
  }

  const Scene* SceneOf(const Light* light) const {
    for (const Scene* s : scenes)
      for (const Light* l = s->firstLight; l != nullptr; l = l->nextLight)
        if (l == light) return s;
    return nullptr;
  }

  // The meshes DeleteMesh frees with mesh: its untagged descendants.
  void Freed(Mesh* mesh, std::vector<Mesh*>* out) {
    out->push_back(mesh);
    for (int32_t i = 0; i < mesh->childCount; ++i) CollectUntagged(mesh->children[i], out);
  }
  void CollectUntagged(void* node, std::vector<Mesh*>* out) {
    NodeLinks links = LinksOf(node);
    for (int32_t i = 0; i < *links.childCount; ++i) CollectUntagged((*links.children)[i], out);
    if (NodeIsMesh(NodeKindOf(node)) && static_cast<Mesh*>(node)->hostObject == 0)
      out->push_back(static_cast<Mesh*>(node));
  }
  void DeleteMeshTracked(Mesh* mesh) {
    std::vector<Mesh*> freed;
    Freed(mesh, &freed);
    DeleteMesh(mesh);
    for (Mesh* m : freed) Drop(meshes, m);
  }
  // The host unlinks what the deletes do not: lights from meshes and from
  // other scenes, materials from polygons, cameras from viewports.
  void UnlinkLight(Light* light) {
    for (Mesh* m : meshes) RemoveLightFromMesh(light, m);
    for (Scene* s : scenes) RemoveLightFromScene(s, light);
  }
  void UnlinkMaterial(Material* mat) {
    for (Mesh* m : meshes) RemoveMaterialFromMesh(mat, m);
    for (Scene* s : scenes) RemoveMaterialFromScene(s, mat);
  }
  void UnlinkCamera(const Camera* camera) {
    for (Viewport* vp : viewports)
      if (vp->camera == camera) SetViewportCamera(vp, nullptr);
  }

  void DeleteSceneTracked(Scene* scene, bool whole) {
    for (Light* l = scene->firstLight; l != nullptr; l = l->nextLight)
      if (whole || l->hostObject == 0) {
        for (Mesh* m : meshes) RemoveLightFromMesh(l, m);
        for (Scene* s : scenes)
          if (s != scene) RemoveLightFromScene(s, l);
      }
    for (Material* m = scene->firstMaterial; m != nullptr; m = m->nextMaterial)
      if (whole || m->keep == 0)
        for (Mesh* mesh : meshes) RemoveMaterialFromMesh(m, mesh);
    for (Camera* c = scene->firstCamera; c != nullptr; c = c->nextCamera)
      if (whole || c->hostObject == 0) UnlinkCamera(c);
    std::vector<Mesh*> freed;
    for (Mesh* m = scene->firstMesh; m != nullptr; m = m->nextInScene)
      if (whole || m->hostObject == 0) Freed(m, &freed);
    std::vector<void*> gone;
    for (Light* l = scene->firstLight; l != nullptr; l = l->nextLight)
      if (whole || l->hostObject == 0) gone.push_back(l);
    for (Material* m = scene->firstMaterial; m != nullptr; m = m->nextMaterial)
      if (whole || m->keep == 0) gone.push_back(m);
    for (Camera* c = scene->firstCamera; c != nullptr; c = c->nextCamera)
      if (whole || c->hostObject == 0) gone.push_back(c);
    whole ? DeleteWholeScene(scene) : DeleteScene(scene);
    Drop(scenes, scene);
    for (Mesh* m : freed) Drop(meshes, m);
    for (void* p : gone) {
      Drop(lights, static_cast<Light*>(p));
      Drop(materials, static_cast<Material*>(p));
      Drop(cameras, static_cast<Camera*>(p));
    }
  }
};

// Polygons a mesh's tree brings to a sort area. Piece-built polygons count
// for nothing: such a mesh keeps the count it was created with.
int32_t TreePolygons(const Mesh* mesh) {
  int32_t n = MeshIsPieceBuilt(mesh) ? 0 : mesh->meshPolygonCount;
  for (int32_t i = 0; i < mesh->childCount; i++) {
    const void* child = mesh->children[i];
    if (NodeIsMesh(NodeKindOf(const_cast<void*>(child)))) n += TreePolygons(static_cast<const Mesh*>(child));
  }
  return n;
}

template <auto Prev, auto Next, class T>
void CheckLinked(const T* head) {
  if (head == nullptr) return;
  FUZZ_CHECK(head->*Prev == nullptr);
  for (const T* p = head; p->*Next != nullptr; p = p->*Next) FUZZ_CHECK((p->*Next)->*Prev == p);
}

void CheckWorld(const World& w) {
  int32_t chained = 0;
  for (const Scene* s = firstScene; s != nullptr; s = s->nextScene) {
    FUZZ_CHECK(s->nextScene == nullptr || s->nextScene->prevScene == s);
    FUZZ_CHECK(Holds(w.scenes, s));
    ++chained;
  }
  FUZZ_CHECK(chained == static_cast<int32_t>(w.scenes.size()));
  for (const Scene* s : w.scenes) {
    CheckLinked<&Mesh::prevInScene, &Mesh::nextInScene>(s->firstMesh);
    CheckLinked<&Camera::prevCamera, &Camera::nextCamera>(s->firstCamera);
    CheckLinked<&Light::prevLight, &Light::nextLight>(s->firstLight);
    CheckLinked<&Material::prevMaterial, &Material::nextMaterial>(s->firstMaterial);
    CheckLinked<&Skeleton::prevSkeleton, &Skeleton::nextSkeleton>(s->firstSkeleton);
    int32_t polygons = 0;
    for (const Mesh* m = s->firstMesh; m != nullptr; m = m->nextInScene) {
      FUZZ_CHECK(Holds(w.meshes, m));
      FUZZ_CHECK(m->ownerScene == s);
      FUZZ_CHECK(m->ownSortIndexList == nullptr);
      FUZZ_CHECK(m->parent == nullptr || !NodeIsMesh(NodeKindOf(m->parent)));
      if (m->sortPolygonCount != TreePolygons(m))
        fuzz::Note("mesh %p: sort count %d, tree %d, own %d, children %d, piece-built %d", (void*)m, m->sortPolygonCount,
                   TreePolygons(m), m->meshPolygonCount, m->childCount, MeshIsPieceBuilt(m));
      FUZZ_CHECK(m->sortPolygonCount == TreePolygons(m));
      polygons += m->sortPolygonCount;
    }
    for (const Light* l = s->firstLight; l != nullptr; l = l->nextLight) FUZZ_CHECK(Holds(w.lights, l));
    for (const Camera* c = s->firstCamera; c != nullptr; c = c->nextCamera) FUZZ_CHECK(Holds(w.cameras, c));
    for (const Material* m = s->firstMaterial; m != nullptr; m = m->nextMaterial) FUZZ_CHECK(Holds(w.materials, m));
    // The sort area is made for every polygon of the scene's trees; a scene
    // whose area could not be made is not drawn until a later rebuild.
    FUZZ_CHECK(s->polygonCapacity == polygons);
    FUZZ_CHECK(SceneIsReady(s) == (s->sortIndexList != nullptr));
  }
  for (const Mesh* m : w.meshes) {
    if (m->ownerScene != nullptr) FUZZ_CHECK(Holds(w.scenes, m->ownerScene));
    for (int32_t i = 0; i < m->childCount; ++i) FUZZ_CHECK(*LinksOf(m->children[i]).parent == m);
    if (m->parent != nullptr) {
      const NodeLinks p = LinksOf(m->parent);
      FUZZ_CHECK(std::count(*p.children, *p.children + *p.childCount, m) == 1);
      if (NodeIsMesh(NodeKindOf(m->parent))) FUZZ_CHECK(m->ownerScene == nullptr);
    } else if (m->ownerScene == nullptr && m->ownSortIndexList != nullptr) {
      // A mesh alone sorts its tree in an area of its own.
      FUZZ_CHECK(m->sortPolygonCount == TreePolygons(m));
    }
  }
}

Mesh* Generate(fuzz::Input& in) {
  const Vector3 scale{in.Within(0.1f, 4), in.Within(0.1f, 4), in.Within(0.1f, 4)};
  const Vector3* s = in.Bool() ? &scale : nullptr;
  const uint32_t color = in.U32();
  const int32_t a = in.Range(-1, 8), b = in.Range(-1, 8);
  const float x = in.Within(-2, 30), y = in.Within(-2, 30), z = in.Within(-2, 30);
  switch (in.U8() % 11) {
    case 0: return BillboardCreate(x, s, color);
    case 1: return CubeCreate(x, s, color);
    case 2: return ChCubeCreate(x, y, s, a, color);
    case 3: return SphereCreate(x, s, a, b, color);
    case 4: return HemisphereCreate(x, s, a, b, color, in.Bool());
    case 5: return GridCreate(x, s, a, b, color);
    case 6: return CylinderCreate(x, y, z, s, a, color);
    case 7: return TubeCreate(x, y, z, s, a, color);
    case 8: return TorusCreate(x, y, s, a, b, color);
    case 9: return DiskCreate(x, s, a, color);
    default: return RingCreate(x, y, s, a, color);
  }
}

// Only a mesh whose every slot was set is activated: drawing reads whatever
// a slot holds.
Mesh* Build(fuzz::Input& in, bool* set) {
  const int32_t vertices = in.Range(0, 6), polygons = vertices > 0 ? in.Range(0, 6) : 0;
  Mesh* mesh;
  if (in.Bool()) {
    mesh = CreateMesh(0, 0, in.U32());
    if (mesh == nullptr) return nullptr;
    for (int32_t i = 0; i < vertices; ++i) AddMeshVertex(mesh, in.Within(-9, 9), in.Within(-9, 9), in.Within(-9, 9));
    for (int32_t i = 0; i < polygons; ++i)
      *set &= AddMeshTriPolygon(mesh, in.Range(0, vertices - 1), in.Range(0, vertices - 1), in.Range(0, vertices - 1), 0, in.U8() & 31);
    if (in.Bool()) {  // the setters' index tests include the count: the arrays keep room for it
      SetMeshVertex(mesh, mesh->vertexCount, in.Within(-9, 9), 0, 0);
      SetMeshTriTexCoords(mesh, mesh->meshPolygonCount, 0, 0, 1, 0, 0, 1);
    }
  } else {
    mesh = CreateMesh(vertices, polygons, in.U32());
    if (mesh == nullptr) return nullptr;
    for (int32_t i = 0; i < vertices; ++i) SetMeshVertex(mesh, i, in.Within(-9, 9), in.Within(-9, 9), in.Within(-9, 9));
    for (int32_t i = 0; i < polygons; ++i)
      *set &= SetMeshTriPolygon(mesh, i, in.Range(0, vertices - 1), in.Range(0, vertices - 1), in.Range(0, vertices - 1), 0, in.U8() & 31);
  }
  return mesh;
}

// One call, or a few that belong together.
void Step(fuzz::Input& in, World& w) {
  const uint8_t op = in.U8();
  Scene* scene = Pick(in, w.scenes);
  Mesh* mesh = Pick(in, w.meshes);
  fuzz::Note("operation %u", op % 32);
  switch (op % 32) {
    case 0:
    case 1: {  // built, then validated or activated; a refused mesh is deleted
      bool set = true;
      Mesh* m = op % 32 == 0 ? Build(in, &set) : Generate(in);
      if (m == nullptr) break;
      if (in.U8() % 4 == 0 && set) {
        ActivateMesh(m);  // no vertex normals: lit by face normals
      } else {
        m = fuzz::ValidateOrDelete(m);
      }
      if (m != nullptr) w.meshes.push_back(m);
      break;
    }
    case 2: if (mesh) w.DeleteMeshTracked(mesh); break;
    case 3: if (scene && mesh) AssignMeshToScene(scene, mesh, in.U8()); break;
    case 4: if (scene && mesh) RemoveMeshFromScene(scene, mesh, in.U8()); break;
    case 5: {
      void* parent = w.Node(in);
      void* child = w.Node(in);
      if (parent && child) AttachChildToNode(parent, child);
      break;
    }
    case 6: {
      void* child = w.Node(in);
      if (child && *LinksOf(child).parent) DetachChildFromNode(*LinksOf(child).parent, child);
      break;
    }
    case 7: {
      Material* source = in.Bool() ? Pick(in, w.materials) : nullptr;
      if (source == nullptr && mesh) source = GetMeshDefaultMaterial(mesh);
      if (source == nullptr) break;
      Material* m = CreateMaterial(source);
      if (m) w.materials.push_back(m);
      break;
    }
    case 8:
      DeleteFrom(w.materials, Pick(in, w.materials), [&w](Material* m) { w.UnlinkMaterial(m); }, DeleteMaterial);
      break;
    case 9:
      if (Material* m = Pick(in, w.materials); m && scene) {
        bool listed = false;
        for (Scene* s : w.scenes)
          for (Material* x = s->firstMaterial; x; x = x->nextMaterial) listed |= x == m;
        if (!listed) AssignMaterialToScene(scene, m);
        else RemoveMaterialFromScene(scene, m);
      }
      break;
    case 10:
      if (mesh) {
        Material* m = in.Bool() ? Pick(in, w.materials) : nullptr;
        if (in.Bool()) SetMaterial(mesh, m, in.Range(-1, 3), in.Bool());
        else SetFaceMaterial(mesh, in.Range(-1, 7), m, in.Bool(), in.Range(-1, 3));
      }
      break;
    case 11: {
      const Vector3 p{in.Within(-9, 9), 0, 0}, d{0, 0, 1};
      const float color[4] = {1, 0.5f, 0.25f, 1};
      Light* l = in.Bool() ? CreateOmniLight(&p, color, 1, 1, 10, in.U8()) : CreateDirectLight(&p, &d, color, 1, in.U8());
      if (l) w.lights.push_back(l);
      break;
    }
    case 12:
      DeleteFrom(w.lights, Pick(in, w.lights), [&w](Light* l) { w.UnlinkLight(l); }, DeleteLight);
      break;
    // A light is kept in one scene: a second scene would relink it (and so
    // would a mesh of a second scene that is given it).
    case 13:
      if (Light* l = Pick(in, w.lights); l && scene) {
        const Scene* holder = w.SceneOf(l);
        if (in.Bool() && (holder == nullptr || holder == scene)) AssignLightToScene(scene, l, in.U8());
        else RemoveLightFromScene(scene, l);
      }
      break;
    case 14:
      if (Light* l = Pick(in, w.lights); l && mesh) {
        // The call reaches the whole subtree, and each mesh there that a scene
        // holds brings the light into that scene: all must be the one scene
        // that holds the light, if any does.
        const Scene* holder = w.SceneOf(l);
        bool oneScene = true;
        e3d::ForEachNode(mesh, [&](void* n) {
          if ((e3d::NodeKindOf(n) & kNodeKindMask) != kNodeMesh) return;
          const Scene* s = static_cast<Mesh*>(n)->ownerScene;
          if (s == nullptr) return;
          if (holder == nullptr) holder = s;
          oneScene = oneScene && s == holder;
        });
        if (in.Bool() && oneScene)
          AssignLightToMesh(l, mesh);
        else
          RemoveLightFromMesh(l, mesh);
      }
      break;
    case 15: {
      const Vector3 eye{0, 0, -50}, at{0, 0, 0};
      if (Camera* c = CreateCamera(&eye, &at, 0, 60, 10)) w.cameras.push_back(c);
      break;
    }
    case 16:
      DeleteFrom(w.cameras, Pick(in, w.cameras), [&w](Camera* c) { w.UnlinkCamera(c); }, DeleteCamera);
      break;
    case 17:
      if (Camera* c = Pick(in, w.cameras); c && scene) {
        switch (in.U8() % 5) {
          case 0: AssignCameraToScene(scene, c); break;
          case 1: RemoveCameraFromScene(scene, c); break;
          case 2: RemoveCameraFromAllScenes(c); break;
          case 3: SetActivedSceneCamera(scene, in.Bool() ? c : nullptr); break;
          default: SwitchActivedSceneCamera(scene); break;
        }
      }
      break;
    case 18: {
      Viewport* vp = w.viewports[in.U8() & 1];
      if (in.Bool()) SetViewportCamera(vp, in.Bool() ? Pick(in, w.cameras) : nullptr);
      else if (scene) SetSceneViewport(scene, in.Bool() ? vp : nullptr);
      if (mesh && in.Bool()) SetMeshViewport(mesh, vp);
      break;
    }
    case 19:
      if (w.scenes.size() < 3)
        if (Scene* s = CreateScene()) w.scenes.push_back(s);
      break;
    case 20:
      if (scene) w.DeleteSceneTracked(scene, in.Bool());
      break;
    case 21: {
      Bone* bone = Pick(in, w.freeBones);
      switch (in.U8() % 6) {
        case 0:
          if (Skeleton* s = CreateSkeleton()) w.skeletons.push_back(s);
          break;
        case 1:
          if (Bone* b = CreateBone()) {
            const char name[2] = {static_cast<char>('a' + in.U8() % 8), 0};
            SetBoneName(b, name);
            w.bones.push_back(b), w.freeBones.push_back(b);
          }
          break;
        case 2:
          if (Skeleton* s = Pick(in, w.skeletons); s && bone) {
            const char parent[2] = {static_cast<char>('a' + in.U8() % 8), 0};
            if (AttachBoneToSkeleton(s, in.Bool() ? parent : nullptr, bone)) Drop(w.freeBones, bone);
          }
          break;
        case 3:
          if (Skeleton* s = Pick(in, w.skeletons); s && scene)
            in.Bool() ? (void)AssignSkeletonToScene(scene, s) : (void)RemoveSkeletonFromScene(scene, s);
          break;
        case 4:
          DeleteFrom(w.skeletons, Pick(in, w.skeletons),
                     [&w](Skeleton* s) { for (Scene* sc : w.scenes) RemoveSkeletonFromScene(sc, s); }, DeleteSkeleton);
          break;
        default:
          if (mesh) in.Bool() ? (void)AssignSkinToMesh(mesh) : RemoveSkinFromMesh(mesh);
          break;
      }
      break;
    }
    case 22:
      if (mesh) SetMeshTvObject(mesh, in.U8() & 1);
      if (Light* l = Pick(in, w.lights)) l->hostObject = in.U8() & 1;
      if (Camera* c = Pick(in, w.cameras)) c->hostObject = in.U8() & 1;
      if (Material* m = Pick(in, w.materials)) m->keep = in.U8() & 1;
      break;
    case 23:
      if (in.Bool() || w.textures.empty()) {
        if (SurfaceDesc* t = CreateCheckerTexture(in.Range(1, 8), in.Range(1, 8), in.Range(0, 3), in.U16(), in.U16()))
          w.textures.push_back(t);
      } else if (mesh) {
        SurfaceDesc* t = Pick(in, w.textures);
        in.Bool() ? SetTexture(mesh, t, in.Bool()) : RemoveTextureFromMaterial(t, GetMeshDefaultMaterial(mesh));
      }
      break;
    case 24:
      if (mesh) {
        SetMeshRenderMode(mesh, in.U32());
        SetMeshShadeMode(mesh, in.U8());
        SetMeshCullMode(mesh, in.U8());
        if (in.Bool()) HideMesh(mesh);
        else ShowMesh(mesh);
        if (in.Bool()) CalcMeshVerticesNormal(mesh);
      }
      break;
    case 25:
      if (scene) DrawScene(scene);
      if (mesh) DrawMesh(mesh);
      break;
    case 26: fuzz::FailAllocation(in.Range(1, 6)); return;  // for the next call
    default: break;
  }
  fuzz::FailAllocation(0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzz::StartEngine();
  const size_t liveAtStart = fuzz::LiveBlocks();
  fuzz::Input in(data, size);
  {
    World w;
    SurfaceDesc surface{};
    surface.pixels = w.pixels, surface.width = surface.height = 8, surface.pitch = 16;
    for (int i = 0; i < 2; ++i) {
      w.viewports[i] = CreateViewport(&surface, 8, 8, i);
      FUZZ_CHECK(w.viewports[i] != nullptr);
      SetViewportType(w.viewports[i], 1 | E3D_VIEWPORT_ENABLED);
    }
    for (int n = 0; n < 64 && !in.Empty(); ++n) {
      Step(in, w);
      CheckWorld(w);
    }
    fuzz::FailAllocation(0);
    fuzz::Note("deleting everything");
    while (!w.scenes.empty()) w.DeleteSceneTracked(w.scenes.back(), false);
    while (!w.meshes.empty()) w.DeleteMeshTracked(w.meshes.back());
    for (Light* l : w.lights) DeleteLight(l);
    for (Material* m : w.materials) DeleteMaterial(m);
    for (Camera* c : w.cameras) w.UnlinkCamera(c), DeleteCamera(c);
    for (Skeleton* s : w.skeletons) DeleteSkeleton(s);
    for (Bone* b : w.bones) FreeMemory(b->children), FreeMemory(b);
    for (SurfaceDesc* t : w.textures) FreeMemory(t->pixels), FreeMemory(t);
    for (Viewport* vp : w.viewports) DeleteViewport(vp);
  }
  FUZZ_CHECK(fuzz::LiveBlocks() == liveAtStart);
  return 0;
}
