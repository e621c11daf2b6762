// Scenes of meshes with any vertices, placements, modes and materials, seen
// through cameras anywhere (inside a mesh, on the near plane, straight up or
// down, at NaN), drawn by DrawScene and DrawMesh with and without a depth
// buffer over several frames while vertices and the camera move. Nothing may
// be written outside the clip rectangle, and nothing may be left behind.
#include <cstdint>
#include <vector>

#include "engine3d.h"
#include "fuzz_host.h"
#include "fuzz_input.h"
#include "fuzz_mesh.h"
#include "fuzz_textures.h"
#include "objects/camera.h"
#include "objects/mesh.h"
#include "render_target.h"

namespace {

// A position near the scene (where the meshes are) or anywhere at all.
Vector3 Point(fuzz::Input& in) {
  if (in.U8() % 4 == 0) return {in.Float(), in.Float(), in.Float()};
  return {in.Within(-60, 60), in.Within(-60, 60), in.Within(-60, 60)};
}

void PlaceCamera(fuzz::Input& in, Camera* camera) {
  Vector3 eye = Point(in), target = Point(in);
  switch (in.U8() % 5) {
    case 0: target = {eye.x, eye.y + (in.Bool() ? 1.0f : -1.0f) * in.Within(0, 100), eye.z}; break;  // straight up or down
    case 1: target = eye; break;
    case 2: eye = {target.x, target.y, target.z - camera->nearPlane}; break;  // target on the near plane
    default: break;
  }
  SetCameraPosition(camera, &eye, 0);
  SetCameraPosition(camera, &target, 1);
  if (in.Bool()) SetCameraRoll(camera, in.Float());
}

// A validated mesh of a few vertices and triangles, or null.
Mesh* NewMesh(fuzz::Input& in) {
  // Only a mesh whose every slot was set is activated: drawing reads
  // whatever a slot holds.
  const int32_t vertices = in.Range(1, 10), polygons = in.Range(0, 10);
  Mesh* mesh = nullptr;
  int32_t set = 1;  // every slot set: a refused one stays unset
  if (in.U8() % 4 == 0) {  // piece by piece
    mesh = CreateMesh(0, 0, in.U32());
    for (int32_t i = 0; i < vertices; ++i) {
      const Vector3 p = Point(in);
      AddMeshVertex(mesh, p.x, p.y, p.z);
    }
    for (int32_t i = 0; i < polygons; ++i)
      set &= AddMeshTriPolygon(mesh, in.Range(0, vertices - 1), in.Range(0, vertices - 1), in.Range(0, vertices - 1), 0, in.U8() & 31);
  } else {
    mesh = CreateMesh(vertices, polygons, in.U32());
    if (mesh == nullptr) return nullptr;  // no polygons
    for (int32_t i = 0; i < vertices; ++i) {
      const Vector3 p = Point(in);
      SetMeshVertex(mesh, i, p.x, p.y, p.z);
    }
    for (int32_t i = 0; i < polygons; ++i) {
      if (in.U8() % 4 == 0 && i + 1 < polygons) {
        set &= SetMeshQuadPolygon(mesh, i, in.Range(0, vertices - 1), in.Range(0, vertices - 1), in.Range(0, vertices - 1),
                           in.Range(0, vertices - 1), 0, in.U8() & 31);
        SetMeshQuadTexCoords(mesh, i, in.Float(), in.Float(), in.Float(), in.Float(), in.Float(), in.Float(), in.Float(), in.Float());
        ++i;
      } else {
        set &= SetMeshTriPolygon(mesh, i, in.Range(0, vertices - 1), in.Range(0, vertices - 1), in.Range(0, vertices - 1), 0, in.U8() & 31);
        SetMeshTriTexCoords(mesh, i, in.Float(), in.Float(), in.Float(), in.Float(), in.Float(), in.Float());
      }
    }
  }
  FUZZ_CHECK(mesh != nullptr);
  if (in.U8() % 8 == 0 && set) {
    // Vertex lighting reads the normals, which only validation makes.
    CalcMeshVerticesNormal(mesh);
    ActivateMesh(mesh);
    return mesh;
  }
  return fuzz::ValidateOrDelete(mesh);
}

void StyleMesh(fuzz::Input& in, Mesh* mesh, fuzz::Textures& textures) {
  SetMeshModelPosition(mesh, in.Within(-40, 40), in.Within(-40, 40), in.Within(-40, 40));
  if (in.Bool()) SetMeshModelOrientation(mesh, in.Float(), in.Float(), in.Float());
  if (in.Bool()) SetMeshPivot(mesh, in.Float(), in.Float(), in.Float());
  SetMeshRenderMode(mesh, in.U32());
  SetMeshShadeMode(mesh, in.U8());
  SetMeshCullMode(mesh, in.U8());
  if (in.U8() % 4 == 0) SetMeshBillboardMode(mesh, in.U32());
  if (in.U8() % 8 == 0) HideMesh(mesh);
  Material* m = GetMeshDefaultMaterial(mesh);
  SetMaterialRenderMode(m, in.U32());
  fuzz::FillMaterial(in, m, textures);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzz::StartEngine();
  const size_t liveAtStart = fuzz::LiveBlocks();
  fuzz::Input in(data, size);
  {
    fuzz::Target t(in, in.Range(0, 1));
    SetViewportType(t.vp, 1 | E3D_VIEWPORT_ENABLED);
    fuzz::Textures textures;
    Scene* scene = CreateScene();
    const Vector3 origin{0, 0, 0};
    Camera* camera = CreateCamera(&origin, &origin, 0, in.U8() % 4 ? in.Within(1, 179) : in.Float(),
                                  in.U8() % 4 ? in.Within(1, 20) : in.Float());
    FUZZ_CHECK(scene != nullptr && camera != nullptr);
    PlaceCamera(in, camera);
    SetViewportCamera(t.vp, camera);
    AssignCameraToScene(scene, camera);
    SetSceneViewport(scene, t.vp);

    std::vector<Light*> lights;
    // Now and then more lights than a mesh can list.
    for (int32_t i = in.U8() % 16 == 0 ? 70 : in.Range(0, 3); i > 0; --i) {
      const Vector3 p = Point(in), d = Point(in);
      const float color[4] = {in.Float(), in.Float(), in.Float(), 1};
      Light* light = in.Bool() ? CreateOmniLight(&p, color, in.Float(), in.Float(), in.Float(), in.U32())
                               : CreateDirectLight(&p, &d, color, in.Float(), in.U32());
      FUZZ_CHECK(light != nullptr);
      AssignLightToScene(scene, light, 1);
      lights.push_back(light);
    }

    // Meshes go to the scene, below an earlier mesh, or stay alone for DrawMesh.
    std::vector<Mesh*> meshes, alone;
    for (int32_t i = in.Range(1, 4); i > 0; --i) {
      Mesh* mesh = NewMesh(in);
      if (mesh == nullptr) continue;
      StyleMesh(in, mesh, textures);
      const uint8_t where = in.U8() % 4;
      if (where == 1 && !meshes.empty()) {
        AttachChildToNode(meshes[in.Range(0, static_cast<int32_t>(meshes.size()) - 1)], mesh);
      } else if (where == 2 || AssignMeshToScene(scene, mesh, in.U8()) == nullptr) {
        SetMeshViewport(mesh, t.vp);
        alone.push_back(mesh);
      }
      meshes.push_back(mesh);
    }

    for (int32_t frame = in.Range(1, 3); frame > 0; --frame) {
      const fuzz::Rect clip = fuzz::ClipRect(t.vp);
      fuzz::Note("DrawScene, %u meshes, camera (%g %g %g)", static_cast<unsigned>(meshes.size()), GetCameraPosition(camera, 0).x,
                 GetCameraPosition(camera, 0).y, GetCameraPosition(camera, 0).z);
      t.Snapshot();
      DrawScene(scene);
      t.Check(clip);
      for (Mesh* mesh : alone) {
        fuzz::Note("DrawMesh");
        t.Snapshot();
        DrawMesh(mesh);
        t.Check(clip);
      }
      // Move things for the next frame: the camera, a vertex past its box.
      if (in.Bool()) PlaceCamera(in, camera);
      if (!meshes.empty() && in.Bool()) {
        Mesh* mesh = meshes[in.Range(0, static_cast<int32_t>(meshes.size()) - 1)];
        const Vector3 p = Point(in);
        // An index equal to the count would write past the last vertex: a host error.
        SetMeshVertex(mesh, in.Range(0, mesh->vertexCount - 1), p.x, p.y, p.z);
      }
    }

    // Children hang below earlier meshes; a parent deletes its untagged children.
    for (auto m = meshes.rbegin(); m != meshes.rend(); ++m) DeleteMesh(*m);
    for (Light* light : lights) DeleteLight(light);
    DeleteCamera(camera);
    DeleteScene(scene);
  }
  FUZZ_CHECK(fuzz::LiveBlocks() == liveAtStart);
  return 0;
}
