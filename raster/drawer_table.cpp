// The static drawer table. Each shade family names its drawers below; the
// blocks are built from them at compile time. Every entry not named, and
// every drawer not written yet, is NoDraw.
#include "raster/drawer_table.h"

namespace e3d {

void E3D_CALL NoDraw(MeshPolygon*, MeshVertex*) {}

}  // namespace e3d

namespace {

using namespace e3d;

struct DrawerPair {
  TriangleDrawer plain;
  TriangleDrawer depthTested;
};

constexpr DrawerPair kNothing = {NoDraw, NoDraw};

// The drawers of one shade family, at entries kDrawDots ... kDrawOpacity2.
struct FamilyDrawers {
  DrawerPair dots = kNothing;
  DrawerPair wire = kNothing;
  DrawerPair solid = kNothing;
  DrawerPair diffuse = kNothing;
  DrawerPair opacity = kNothing;
  DrawerPair opacity2 = kNothing;
};

// Unlit polygons: drawn in their flat colour, so dots, wire and solid are
// the Flat family's.
constexpr FamilyDrawers kNoneFamily = {
    .dots = kNothing,      // ClipAndDrawFlatDotsTriangle and its depth-tested twin
    .wire = kNothing,      // ClipAndDrawFlatWireTriangle and twin
    .solid = {FlatSolidTriangle, FlatSolidTriangleZ},
    .diffuse = kNothing,   // NoneDiffuseTriangle, NoneDiffuseTriangleZ
    .opacity = kNothing,   // NoneOpacityTriangle, NoneOpacityTriangleZ
    .opacity2 = kNothing,  // second opacity drawer of the None family and twin
};

constexpr FamilyDrawers kFlatFamily = {
    .dots = kNoneFamily.dots,
    .wire = kNoneFamily.wire,
    .solid = kNoneFamily.solid,
    .diffuse = kNothing,   // FlatDiffuseTriangle, FlatDiffuseTriangleZ
    .opacity = kNothing,   // FlatOpacityTriangle, FlatOpacityTriangleZ
    .opacity2 = kNothing,  // second opacity drawer of the Flat family and twin
};

constexpr FamilyDrawers kGouraudFamily = {
    .dots = kNothing,      // ClipAndDrawGouraudDotsTriangle and twin
    .wire = kNothing,      // ClipAndDrawGouraudWireTriangle and twin
    .solid = {GouraudSolidTriangle, GouraudSolidTriangleZ},
    .diffuse = kNothing,   // GouraudDiffuseTriangle, GouraudDiffuseTriangleZ
    .opacity = kNothing,   // GouraudOpacityTriangle, GouraudOpacityTriangleZ
    .opacity2 = kNothing,  // second opacity drawer of the Gouraud family and twin
};

constexpr void Place(ShadeBlock& block, uint32_t index, DrawerPair pair) {
  block.entries[index] = pair.plain;
  block.entries[index + 1] = pair.depthTested;
}

constexpr ShadeBlock BuildBlock(const FamilyDrawers& family) {
  ShadeBlock block{};
  for (TriangleDrawer& entry : block.entries) entry = NoDraw;
  Place(block, kDrawDots, family.dots);
  Place(block, kDrawWire, family.wire);
  Place(block, kDrawSolid, family.solid);
  Place(block, kDrawDiffuse, family.diffuse);
  Place(block, kDrawOpacity, family.opacity);
  Place(block, kDrawOpacity2, family.opacity2);
  return block;
}

constexpr ShadeBlock kEmptyBlock = BuildBlock(FamilyDrawers{});
constexpr ShadeBlock kNoneBlock = BuildBlock(kNoneFamily);
constexpr ShadeBlock kFlatBlock = BuildBlock(kFlatFamily);
constexpr ShadeBlock kGouraudBlock = BuildBlock(kGouraudFamily);

}  // namespace

namespace e3d {

constinit const ShadeBlock* const DrawerTable[8] = {
    &kEmptyBlock, &kNoneBlock, &kEmptyBlock, &kFlatBlock,
    &kEmptyBlock, &kEmptyBlock, &kEmptyBlock, &kGouraudBlock,
};

}  // namespace e3d
