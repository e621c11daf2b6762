// Memory over time: every export that allocates, with its nth allocation
// refused for n = 1, 2, ... until the call goes through untouched (it reports
// the failure or completes as it is meant to, leaves every scene it touched
// linked both ways and sized for its polygons, and leaks nothing); and a long
// run drawing a changing scene, after which memory is back where it started.
#include <algorithm>
#include <functional>
#include <random>
#include <vector>

#include "engine/math.h"

#include "objects/skeleton.h"
#include "scene_fixture.h"
#include "viewport/viewport.h"

namespace {

// The objects a case starts from and what its call made; Clear deletes
// whatever is left.
struct World {
  Scene* scene = nullptr;
  Mesh *a = nullptr, *b = nullptr, *c = nullptr, *made = nullptr;
  Camera* camera = nullptr;
  Light* light = nullptr;
  Material* material = nullptr;
  Skeleton* skeleton = nullptr;
  Bone *root = nullptr, *bone = nullptr;
  Viewport* vp = nullptr;
  SurfaceDesc* texture = nullptr;
  MipChain chain{};
  uint16_t pixels[16 * 16] = {};

  // Two validated meshes (6 and 4 triangles) and a third below the first.
  void Meshes() {
    a = ValidateMesh(CubeCreate(10, nullptr, 0x808080));
    b = ValidateMesh(GridCreate(10, nullptr, 2, 1, 0x808080));
    c = ValidateMesh(DiskCreate(5, nullptr, 6, 0x808080));
  }
  void Stage() {
    Meshes();
    scene = CreateScene();
    AssignMeshToScene(scene, a, 0);
    const Vector3 eye{0, 0, -60}, at{0, 0, 0};
    camera = CreateCamera(&eye, &at, 0, 60, 10);
    SurfaceDesc s{};
    s.pixels = pixels, s.width = s.height = 16, s.pitch = 32;
    vp = CreateViewport(&s, 16, 16, 0);  // the painter path sorts every polygon
    SetViewportType(vp, E3D_VIEWPORT_ENABLED | 1);
    SetViewportCamera(vp, camera);
    SetSceneViewport(scene, vp);
    const Vector3 p{0, 40, -40};
    const float white[4] = {1, 1, 1, 1};
    light = CreateOmniLight(&p, white, 1, 10, 200, E3D_LIGHT_ON);
    AssignLightToScene(scene, light, 1);
  }
  void Clear() {
    for (Mesh* m : {b, c, made})
      if (m && m->parent) DetachChildFromNode(m->parent, m);
    if (scene) {  // a, the camera and the light go with it
      for (Mesh* m : {b, c, made})
        if (m && m->ownerScene == scene) RemoveMeshFromScene(scene, m, 0);
      DeleteWholeScene(scene);
    } else {
      if (a) DeleteMesh(a);
      if (camera) DeleteCamera(camera);
      if (light) DeleteLight(light);
    }
    for (Mesh* m : {b, c, made})
      if (m) DeleteMesh(m);
    if (material) DeleteMaterial(material);
    if (skeleton) DeleteSkeleton(skeleton);
    for (Bone* x : {root, bone})
      if (x) FreeMemory(x->children), FreeMemory(x);
    if (vp) DeleteViewport(vp);
    if (texture) FreeMemory(texture->pixels), FreeMemory(texture);
    for (int i = 1; i < 4; ++i) FreeMemory(chain.levelPixels[i]);
    // The sorter's scratch list as the fixture made it.
    static uint32_t list[4096];
    ReleaseRadixSort();
    ResetRadixSort(4096, list);
  }
};

struct Case {
  const char* name;
  std::function<void(World&)> setUp;
  std::function<bool(World&)> call;  // true when it reports success
  bool completes = false;            // reports nothing: runs to its end even when short
};

Mesh* Piece() {
  Mesh* m = CreateMesh(0, 0, 0x808080);
  for (int i = 0; i < 4; ++i) AddMeshVertex(m, float(i & 1), float(i >> 1), 0);
  AddMeshTriPolygon(m, 0, 1, 2, 0, 0);
  AddMeshTriPolygon(m, 1, 3, 2, 0, 0);
  return m;
}

void Nothing(World&) {}
// Refused for memory, validation deletes the mesh it was given.
bool Validate(World& w) {
  Mesh* m = w.c;
  w.c = nullptr;
  return (w.made = ValidateMesh(m)) != nullptr;
}

const std::vector<Case>& Cases() {
  static const std::vector<Case> cases = {
      {"CreateScene", Nothing, [](World& w) { return (w.scene = CreateScene()) != nullptr; }},
      {"CreateMesh", Nothing, [](World& w) { return (w.made = CreateMesh(8, 6, 0)) != nullptr; }},
      {"CreateMesh empty", Nothing, [](World& w) { return (w.made = CreateMesh(0, 0, 0)) != nullptr; }},
      {"AddMeshVertex", [](World& w) { w.made = CreateMesh(0, 0, 0); },
       [](World& w) {
         const bool ok = AddMeshVertex(w.made, 1, 2, 3) == 1;
         EXPECT_EQ(w.made->vertexCount, ok ? 1 : 0);
         return ok;
       }},
      {"AddMeshTriPolygon", [](World& w) { w.made = Piece(); },
       [](World& w) {
         const bool ok = AddMeshTriPolygon(w.made, 0, 2, 3, 0, 0) == 1;
         EXPECT_EQ(w.made->meshPolygonCount, ok ? 3 : 2);
         return ok;
       }},
      {"ValidateMesh piece-built", [](World& w) { w.c = Piece(); }, Validate},
      {"ValidateMesh one-block", [](World& w) { w.c = CreateMesh(3, 1, 0), SetMeshTriPolygon(w.c, 0, 0, 1, 2, 0, 0); },
       Validate},
      {"CalcMeshVerticesNormal", [](World& w) { w.Meshes(); }, [](World& w) { return CalcMeshVerticesNormal(w.a), true; }, true},
      {"CreateAABB", [](World& w) { w.Meshes(); }, [](World& w) { return (w.made = CreateAABB(w.a)) != nullptr; }},
      {"generators", Nothing,
       [](World&) {
         const Vector3 s{1, 2, 1};
         const std::function<Mesh*()> make[] = {
             [&] { return BillboardCreate(4, &s, 0); }, [&] { return CubeCreate(4, &s, 0); },
             [&] { return ChCubeCreate(4, 1, &s, 2, 0); }, [&] { return SphereCreate(4, &s, 5, 6, 0); },
             [&] { return HemisphereCreate(4, &s, 5, 6, 0, 0); }, [&] { return GridCreate(4, &s, 2, 3, 0); },
             [&] { return CylinderCreate(2, 1, 4, &s, 5, 0); }, [&] { return TubeCreate(3, 1, 4, &s, 5, 0); },
             [&] { return TorusCreate(4, 1, &s, 5, 6, 0); }, [&] { return DiskCreate(4, &s, 5, 0); },
             [&] { return RingCreate(4, 2, &s, 5, 0); }};
         // One generator after another: the refused one ends the call.
         for (const auto& f : make) {
           Mesh* m = f();
           if (m == nullptr) return false;
           DeleteMesh(m);
         }
         return true;
       }},
      {"CreateMaterial", [](World& w) { w.Meshes(); },
       [](World& w) { return (w.material = CreateMaterial(GetMeshDefaultMaterial(w.a))) != nullptr; }},
      {"CreateCheckerTexture", Nothing, [](World& w) { return (w.texture = CreateCheckerTexture(8, 4, 2, 0, 0x7FFF)) != nullptr; }},
      // Where the chain ends on a refused level is the texture tests' concern.
      {"CreateMMTexture", Nothing,
       [](World& w) {
         w.chain.levelPixels[0] = w.pixels, w.chain.levelWidths[0] = w.chain.levelHeights[0] = 16;
         w.chain.levelPitches[0] = 32;
         return CreateMMTexture1555(&w.chain), true;
       },
       true},
      {"CreateCamera", Nothing,
       [](World& w) {
         const Vector3 eye{0, 0, -1}, at{0, 0, 0};
         return (w.camera = CreateCamera(&eye, &at, 0, 60, 10)) != nullptr;
       }},
      {"CreateLights", Nothing,
       [](World& w) {
         const Vector3 p{0, 0, 0}, d{0, 0, 1};
         const float white[4] = {1, 1, 1, 1};
         Light* omni = CreateOmniLight(&p, white, 1, 1, 2, 0);
         if (omni == nullptr) return false;
         DeleteLight(omni);
         return (w.light = CreateDirectLight(&p, &d, white, 1, 0)) != nullptr;
       }},
      {"CreateViewport", Nothing,
       [](World& w) {
         SurfaceDesc s{};
         s.pixels = w.pixels, s.width = s.height = 16, s.pitch = 32;
         return (w.vp = CreateViewport(&s, 16, 16, 1)) != nullptr;
       }},
      {"skeleton and bones", Nothing,
       [](World& w) {
         if ((w.skeleton = CreateSkeleton()) == nullptr || (w.root = CreateBone()) == nullptr ||
             (w.bone = CreateBone()) == nullptr)
           return false;
         SetBoneName(w.root, "hip");
         SetBoneName(w.bone, "knee");
         AttachBoneToSkeleton(w.skeleton, nullptr, w.root);
         const bool ok = AttachBoneToSkeleton(w.skeleton, "hip", w.bone) == 1;
         EXPECT_EQ(w.bone->parent, ok ? w.root : nullptr);
         return ok;
       }},
      {"AssignSkinToMesh", [](World& w) { w.Meshes(); }, [](World& w) { return AssignSkinToMesh(w.a) == 1; }},
      // A scene whose sort area cannot be made keeps the mesh and is not
      // drawn until a later change rebuilds the area.
      {"AssignMeshToScene", [](World& w) { w.Stage(); },
       [](World& w) { return AssignMeshToScene(w.scene, w.b, 1) == w.b && e3d::SceneIsReady(w.scene); }},
      {"RemoveMeshFromScene", [](World& w) { w.Stage(), AssignMeshToScene(w.scene, w.b, 1); },
       [](World& w) { return RemoveMeshFromScene(w.scene, w.b, 1) == 1; }, true},
      {"AttachChildToNode", [](World& w) { w.Stage(); },
       [](World& w) { return AttachChildToNode(w.a, w.b) == 1 && e3d::SceneIsReady(w.scene); }},
      {"DetachChildFromNode", [](World& w) { w.Stage(), AttachChildToNode(w.a, w.b), AttachChildToNode(w.a, w.c); },
       [](World& w) { return DetachChildFromNode(w.a, w.b) == 1 && w.b->parent == nullptr; }, true},
      // Deleting a parent detaches its tagged children, each given an area.
      {"DeleteMesh with children",
       [](World& w) {
         w.Stage(), AttachChildToNode(w.a, w.b), AttachChildToNode(w.a, w.c);
         SetMeshTvObject(w.b, 1), SetMeshTvObject(w.c, 1);
       },
       [](World& w) {
         DeleteMesh(w.a);
         w.a = nullptr;
         return w.b->parent == nullptr && w.c->parent == nullptr;
       },
       true},
      // Drawing allocates only the sorter's scratch list, on the first sort.
      {"DrawScene", [](World& w) { w.Stage(), AssignMeshToScene(w.scene, w.b, 1), ReleaseRadixSort(); },
       [](World& w) { return DrawScene(w.scene), true; }, true},
      {"DrawMesh", [](World& w) { w.Stage(), SetMeshViewport(w.b, w.vp), ReleaseRadixSort(); },
       [](World& w) { return DrawMesh(w.b), true; }, true},
  };
  return cases;
}

class ResilienceTest : public SceneFixture {
 protected:
  void SetUp() override {
    SceneFixture::SetUp();
    InitRenderTables();
  }
  void TearDown() override {
    ReleaseRenderTables();
    SceneFixture::TearDown();
  }
  // As ExpectConsistent, and the area present exactly when the scene says it
  // is ready: a scene whose area could not be made is checked as if it were.
  static void ExpectIntact(Scene* scene) {
    if (scene == nullptr) return;
    EXPECT_EQ(e3d::SceneIsReady(scene), scene->sortIndexList != nullptr);
    const uint32_t flags = scene->sceneFlags;
    scene->sceneFlags |= e3d::kSceneReady;
    ExpectConsistent(scene);
    scene->sceneFlags = flags;
  }
};

TEST_F(ResilienceTest, EveryAllocatingCallSurvivesEachRefusal) {
  for (const Case& c : Cases()) {
    for (long n = 1;; ++n) {
      SCOPED_TRACE(testing::Message() << c.name << ", allocation " << n << " refused");
      const size_t live = testhost::LiveBlocks();
      World w;
      c.setUp(w);
      const size_t before = testhost::Allocations();
      testhost::FailAllocation(n);
      const bool ok = c.call(w);
      const bool refused = testhost::Allocations() - before >= size_t(n);
      testhost::FailAllocation(0);
      ExpectIntact(w.scene);
      EXPECT_TRUE(!refused || c.completes || !ok) << "a refused call reports success";
      w.Clear();
      EXPECT_EQ(testhost::LiveBlocks(), live);
      if (!refused) {
        EXPECT_TRUE(ok);
        EXPECT_GT(n, 1) << "the call allocates nothing";
        break;
      }
      ASSERT_LT(n, 2000);
    }
  }
}

Mesh* Generated(std::mt19937& rng) {
  const Vector3 scale{1, 1 + rng() % 3 * 0.5f, 1};
  const float size = 5.0f + rng() % 20;
  Mesh* m = nullptr;
  switch (rng() % 5) {
    case 0: m = CubeCreate(size, &scale, rng()); break;
    case 1: m = SphereCreate(size, &scale, 4 + rng() % 6, 4 + rng() % 6, rng()); break;
    case 2: m = TorusCreate(size, size / 4, &scale, 4 + rng() % 4, 4 + rng() % 6, rng()); break;
    case 3: m = GridCreate(size, &scale, 1 + rng() % 4, 1 + rng() % 4, rng()); break;
    default: m = CylinderCreate(size, size / 2, size, &scale, 4 + rng() % 6, rng()); break;
  }
  m = ValidateMesh(m);
  SetMeshModelPosition(m, float(int(rng() % 200) - 100), float(int(rng() % 60) - 30), float(int(rng() % 200) - 100));
  SetMeshShadeMode(m, rng() % 2 ? 3 : 7);
  if (rng() % 4 == 0) SetMaterialAlphaMode(GetMeshDefaultMaterial(m), 1 + rng() % 3);
  return m;
}

TEST_F(ResilienceTest, AChangingSceneDrawnForManyFramesLeavesNothingBehind) {
  std::mt19937 rng(2024);
  const size_t start = testhost::LiveBlocks();
  static uint16_t pixels[96 * 64];
  SurfaceDesc surface{};
  surface.pixels = pixels, surface.width = 96, surface.height = 64, surface.pitch = 192;
  Viewport* views[2] = {CreateViewport(&surface, 96, 64, 0), CreateViewport(&surface, 96, 64, 1)};
  const Vector3 eye{0, 40, -200}, at{0, 0, 0};
  Camera* camera = CreateCamera(&eye, &at, 0, 60, 10);
  for (Viewport* vp : views) SetViewportType(vp, E3D_VIEWPORT_ENABLED | 1), SetViewportCamera(vp, camera);
  Scene* scene = CreateScene();
  SetSceneViewport(scene, views[0]);
  const size_t base = testhost::LiveBlocks();

  std::vector<Mesh*> meshes;  // top-level, in the scene
  std::vector<Light*> lights;
  size_t peak = 0;
  for (int frame = 0; frame < 2000; ++frame) {
    if (meshes.size() < 12 && rng() % 3 == 0) {
      Mesh* m = Generated(rng);
      AssignMeshToScene(scene, m, 1);
      meshes.push_back(m);
    }
    if (meshes.size() > 2 && rng() % 5 == 0) {  // a child moves under another mesh and back
      Mesh* child = meshes[rng() % meshes.size()];
      Mesh* parent = meshes[rng() % meshes.size()];
      if (AttachChildToNode(parent, child) == 1) DetachChildFromNode(parent, child), AssignMeshToScene(scene, child, 0);
    }
    if (!meshes.empty() && rng() % 4 == 0) {
      const size_t i = rng() % meshes.size();
      DeleteMesh(meshes[i]);
      meshes.erase(meshes.begin() + i);
    }
    if (lights.size() < 4 && rng() % 6 == 0) {
      const Vector3 p{float(int(rng() % 200) - 100), 50, -50};
      const float color[4] = {1, 0.8f, 0.6f, 1};
      lights.push_back(CreateOmniLight(&p, color, 1, 50, 400, E3D_LIGHT_ON | E3D_LIGHT_ATTENUATED));
      AssignLightToScene(scene, lights.back(), 1);
    }
    if (!lights.empty() && rng() % 9 == 0) {
      DeleteLight(lights.back());  // the scene takes it from its meshes
      lights.pop_back();
    }
    // Round the scene, through the straight-down view now and then.
    const float angle = frame * 0.05f;
    const Vector3 e{200 * e3d::Sin(angle), frame % 97 == 0 ? 300.0f : 40.0f, 200 * e3d::Cos(angle)};
    const Vector3 t = frame % 97 == 0 ? Vector3{e.x, 0, e.z} : at;
    SetCameraPosition(camera, &e, 0);
    SetCameraPosition(camera, &t, 1);
    SetSceneViewport(scene, views[frame & 1]);
    if (frame & 1) ClearViewportDepthBuffer(views[1], 0xFFFFFFFF);
    DrawScene(scene);
    ExpectConsistent(scene);
    peak = std::max(peak, testhost::LiveBlocks() - base);
  }
  EXPECT_LT(peak, 12u * 8 + 4u * 2);  // a handful of blocks an object, no growth per frame
  EXPECT_TRUE(std::any_of(pixels, pixels + 96 * 64, [](uint16_t p) { return p != 0; }));

  for (Mesh* m : meshes) DeleteMesh(m);
  for (Light* l : lights) DeleteLight(l);
  DeleteWholeScene(scene);  // and the camera in it
  for (Viewport* vp : views) DeleteViewport(vp);
  EXPECT_EQ(testhost::LiveBlocks(), start);
}

}  // namespace
