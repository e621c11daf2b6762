// Shared by the scene and hierarchy tests: validated meshes of a chosen size,
// the measured sizes of sort areas, and a check of a scene's lists and counts.
#pragma once
#include <cstdint>

#include "engine/registry.h"
#include "engine3d.h"
#include "mesh_fixture.h"
#include "objects/camera.h"
#include "objects/light.h"
#include "objects/material.h"
#include "objects/mesh.h"
#include "objects/scene.h"
#include "objects/skeleton.h"

class SceneFixture : public MeshFixture {
 protected:
  // A validated one-block mesh of n triangles fanned around vertex 0.
  static Mesh* Polygons(int32_t n, uint32_t tag = 0) {
    Mesh* mesh = CreateMesh(n + 2, n, 0x808080);
    for (int32_t i = 0; i < n + 2; i++) SetMeshVertex(mesh, i, float(i), float(i * i % 7), 0);
    for (int32_t i = 0; i < n; i++) SetMeshTriPolygon(mesh, i, 0, i + 1, i + 2, 0, 0);
    mesh = ValidateMesh(mesh);
    mesh->hostObject = tag;
    return mesh;
  }
  static Camera* NewCamera() {
    const Vector3 eye{0, 0, -100}, at{0, 0, 0};
    return CreateCamera(&eye, &at, 0, 60, 10);
  }
  static Light* Omni() {
    const Vector3 at{0, 0, 0};
    const float color[4] = {1, 1, 1, 1};
    return CreateOmniLight(&at, color, 1, 10, 100, 0);
  }

  // Expected bytes of a sort area for n polygons: 20 a polygon on i386;
  // elsewhere n index words, aligned for the n records that follow.
  static uint64_t Bytes(int32_t n) {
#if defined(__i386__)
    return 20u * uint64_t(n);
#else
    const uint64_t a = alignof(PolygonRecord);
    return (4 * uint64_t(n) + a - 1) / a * a + uint64_t(n) * sizeof(PolygonRecord);
#endif
  }
  // The scene's area as the host measures it: shrunk to nothing, then rebuilt.
  static uint64_t SceneAreaBytes(Scene* scene) {
    if (scene->sortIndexList == nullptr) return 0;
    std::size_t before = testhost::LiveBytes();
    int32_t capacity = scene->polygonCapacity;
    scene->polygonCapacity = 0;
    e3d::RebuildSceneSortArea(scene);
    std::size_t bytes = before - testhost::LiveBytes();
    scene->polygonCapacity = capacity;
    e3d::RebuildSceneSortArea(scene);
    return bytes;
  }
  static uint64_t OwnAreaBytes(Mesh* mesh) {
    if (mesh->ownSortIndexList == nullptr) return 0;
    std::size_t before = testhost::LiveBytes();
    e3d::GiveMeshSortArea(mesh, 0);
    std::size_t bytes = before - testhost::LiveBytes();
    e3d::GiveMeshSortArea(mesh, mesh->sortPolygonCount);
    return bytes;
  }

  // Polygons of mesh and of every mesh below it, counted afresh.
  static int32_t TreePolygons(const Mesh* mesh) {
    int32_t n = mesh->meshPolygonCount;
    for (int32_t i = 0; i < mesh->childCount; i++) {
      const Mesh* child = static_cast<const Mesh*>(mesh->children[i]);
      if (e3d::NodeIsMesh(child->nodeKind)) n += TreePolygons(child);
    }
    return n;
  }

  // Every list linked the same way both ways, every listed mesh owned by the
  // scene and without an area of its own, the capacity the sum of the trees.
  static void ExpectConsistent(const Scene* scene) {
    ExpectLinked<&Mesh::prevInScene, &Mesh::nextInScene>(scene->firstMesh);
    ExpectLinked<&Camera::prevCamera, &Camera::nextCamera>(scene->firstCamera);
    ExpectLinked<&Light::prevLight, &Light::nextLight>(scene->firstLight);
    ExpectLinked<&Material::prevMaterial, &Material::nextMaterial>(scene->firstMaterial);
    ExpectLinked<&Skeleton::prevSkeleton, &Skeleton::nextSkeleton>(scene->firstSkeleton);
    int32_t polygons = 0;
    for (const Mesh* m = scene->firstMesh; m != nullptr; m = m->nextInScene) {
      EXPECT_TRUE(m->ownerScene == scene && m->ownSortIndexList == nullptr);
      EXPECT_EQ(m->sortPolygonCount, TreePolygons(m));
      polygons += m->sortPolygonCount;
    }
    EXPECT_EQ(scene->polygonCapacity, polygons);
    EXPECT_TRUE(e3d::SceneIsReady(scene) || scene->firstMesh == nullptr);
  }
  template <auto Prev, auto Next, class T>
  static void ExpectLinked(const T* head) {
    if (head == nullptr) return;
    EXPECT_EQ(head->*Prev, nullptr);
    for (const T* p = head; p->*Next != nullptr; p = p->*Next) EXPECT_EQ((p->*Next)->*Prev, p);
  }
};
