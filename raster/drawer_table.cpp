// The static drawer table. Each shade family names its drawers below; the
// blocks are built from them at compile time. Every entry not named is
// NoDraw.
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
    .dots = {ClipAndDrawFlatDotsTriangle, ClipAndDrawFlatDotsTriangleZ},
    .wire = {ClipAndDrawFlatWireTriangle, ClipAndDrawFlatWireTriangleZ},
    .solid = {FlatSolidTriangle, FlatSolidTriangleZ},
    .diffuse = {NoneDiffuseTriangle, NoneDiffuseTriangleZ},
    .opacity = {NoneOpacityTriangle, NoneOpacityTriangleZ},
    .opacity2 = {NoneEnvironmentTriangle, NoneEnvironmentTriangleZ},
};

constexpr FamilyDrawers kFlatFamily = {
    .dots = kNoneFamily.dots,
    .wire = kNoneFamily.wire,
    .solid = kNoneFamily.solid,
    .diffuse = {FlatDiffuseTriangle, FlatDiffuseTriangleZ},
    .opacity = {FlatOpacityTriangle, FlatOpacityTriangleZ},
    .opacity2 = {FlatEnvironmentTriangle, FlatEnvironmentTriangleZ},
};

constexpr FamilyDrawers kGouraudFamily = {
    .dots = {ClipAndDrawGouraudDotsTriangle, ClipAndDrawGouraudDotsTriangleZ},
    .wire = {ClipAndDrawGouraudWireTriangle, ClipAndDrawGouraudWireTriangleZ},
    .solid = {GouraudSolidTriangle, GouraudSolidTriangleZ},
    .diffuse = {GouraudDiffuseTriangle, GouraudDiffuseTriangleZ},
    .opacity = {GouraudOpacityTriangle, GouraudOpacityTriangleZ},
    .opacity2 = {GouraudEnvironmentTriangle, GouraudEnvironmentTriangleZ},
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
