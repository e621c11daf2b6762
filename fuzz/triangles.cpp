// Every triangle drawer, polygon submission, DrawTriangle2D and DrawLine2D
// on a viewport of any size, scissor and border, with any corners, face
// flags, colours, alpha modes and textures. After each draw the pixels and
// depth entries it changed must lie where it may draw: inside the clip
// rectangle for the entries that clip, inside the viewport for the rest.
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "engine3d.h"
#include "fuzz_host.h"
#include "fuzz_input.h"
#include "fuzz_textures.h"
#include "render_target.h"
#include "objects/camera.h"
#include "objects/material.h"
#include "raster/clip.h"
#include "raster/drawer_table.h"
#include "viewport/viewport.h"

namespace {

using namespace e3d;

// Each distinct drawer of the table once, and whether it clips for itself.
struct Drawer {
  TriangleDrawer draw;
  bool clips;
};
std::vector<Drawer>& Drawers() {
  static std::vector<Drawer> drawers = [] {
    std::vector<Drawer> list;
    for (const ShadeBlock* block : DrawerTable)
      for (uint32_t i = 0; i < kShadeBlockSize; ++i) {
        bool known = false;
        for (const Drawer& d : list) known |= d.draw == block->entries[i];
        const bool clips = i == kDrawDots || i == kDrawDots + 1 || i == kDrawWire || i == kDrawWire + 1;
        if (!known) list.push_back({block->entries[i], clips});
      }
    return list;
  }();
  return drawers;
}

// Outcodes against the window, as the pipeline sets them (a value on a
// bound is inside, a NaN is inside every bound).
uint32_t Outcode(float x, float y, const ClipWindow& w) {
  uint32_t bits = 0;
  if (x < w.xmin) bits = E3D_OUT_LEFT;
  else if (x > w.xmax) bits = E3D_OUT_RIGHT;
  if (y < w.ymin) bits |= E3D_OUT_TOP;
  else if (y > w.ymax) bits |= E3D_OUT_BOTTOM;
  return bits;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzz::StartEngine();
  const size_t liveAtStart = fuzz::LiveBlocks();
  fuzz::Input in(data, size);
  {
    fuzz::Target t(in, in.U8() % 8 ? 1 : 0);
    fuzz::Textures textures;
    Material front{}, back{};
    front.flags = in.U32(), back.flags = in.U32();
    fuzz::FillMaterial(in, &front, textures);
    fuzz::FillMaterial(in, &back, textures);
    Camera* camera = nullptr;
    if (in.Bool()) {
      const Vector3 eye{0, 0, 0}, at{0, 0, 1};
      camera = CreateCamera(&eye, &at, 0, 60, in.Float());
      FUZZ_CHECK(camera != nullptr);
      camera->projScale = in.Float();
    }

    const std::vector<Drawer>& drawers = Drawers();
    for (int n = 0; n < 24 && !in.Empty(); ++n) {
      MeshPolygon face{};
      face.polygonFlags = in.U32();
      for (int k = 0; k < 3; ++k) {
        face.vertexIndex[k] = in.Range(0, 2);
        face.corners[k] = {in.Float(), in.Float(), in.Float(), in.Float()};
        face.colors[k] = in.U32();
      }
      face.material = &front, face.backMaterial = &back;
      const ViewportClip clip = ViewportClipBounds(t.vp);
      MeshVertex v[3];
      for (MeshVertex& c : v) {
        c = {in.Float(), in.Float(), in.Float(), in.Float(), in.Float(), in.Float(),
             in.Within(clip.left, clip.right), in.Within(clip.top, clip.bottom), in.Float(), 0};
        if (in.U8() % 8 == 0) c.invZ = in.Within(0.001f, 1.0f);
      }
      const uint32_t op = in.U8();
      const bool honest = in.U8() % 8 != 0;  // outcodes set as the pipeline sets them
      const fuzz::Rect viewport{0, t.width, 0, t.height};
      const fuzz::Rect clipRect = fuzz::ClipRect(t.vp);
      t.Snapshot();
      SetRenderInfos(t.vp, camera);
      switch (op % 5) {
        case 0: {  // a drawer on its own
          const int32_t which = in.Range(0, static_cast<int32_t>(drawers.size()) - 1);
          const Drawer& d = drawers[which];
          fuzz::Note("drawer %d (clips %d) corners (%g %g) (%g %g) (%g %g) flags %x clip %g %g %g %g", which, d.clips,
                     v[0].screenX, v[0].screenY, v[1].screenX, v[1].screenY, v[2].screenX, v[2].screenY,
                     face.polygonFlags, clip.left, clip.right, clip.top, clip.bottom);
          for (MeshVertex& c : v) c.outcode = honest ? Outcode(c.screenX, c.screenY, {clip.left, clip.right, clip.top, clip.bottom}) : in.U32();
          d.draw(&face, v);
          t.Check(d.clips ? clipRect : viewport);
          break;
        }
        case 1:
        case 2: {  // polygon submission, as the pipeline draws a record
          const uint32_t renderWord = in.U32();
          SetClipWindow(clip.left, clip.right, clip.top, clip.bottom);
          for (MeshVertex& c : v) c.outcode = honest ? Outcode(c.screenX, c.screenY, clipWindow) : in.U32() & 0x3C0;
          fuzz::Note("submit %x honest %d corners (%g %g) (%g %g) (%g %g) flags %x clip %g %g %g %g", renderWord, honest,
                     v[0].screenX, v[0].screenY, v[1].screenX, v[1].screenY, v[2].screenX, v[2].screenY,
                     face.polygonFlags, clip.left, clip.right, clip.top, clip.bottom);
          SubmitFace(&face, v, renderWord, ChooseDrawer(renderWord, in.Bool()));
          t.Check(honest ? clipRect : viewport);
          break;
        }
        case 3: {
          for (MeshVertex& c : v) c.outcode = honest ? Outcode(c.screenX, c.screenY, {0, float(t.width), 0, float(t.height)}) : in.U32() & 0x3C0;
          fuzz::Note("DrawTriangle2D honest %d corners (%g %g) (%g %g) (%g %g) viewport %d x %d", honest,
                     v[0].screenX, v[0].screenY, v[1].screenX, v[1].screenY, v[2].screenX, v[2].screenY, t.width, t.height);
          DrawTriangle2D(&face, v, t.vp);
          t.Check(viewport);
          break;
        }
        default:
          fuzz::Note("DrawLine2D (%g %g) (%g %g) clip %g %g %g %g", v[0].screenX, v[0].screenY, v[1].screenX,
                     v[1].screenY, clip.left, clip.right, clip.top, clip.bottom);
          DrawLine2D(t.vp, v[0].screenX, v[0].screenY, v[1].screenX, v[1].screenY, face.colors[0], in.Range(-1, 3));
          t.Check(clipRect);
          break;
      }
    }
    t.CheckGuards();
    if (camera != nullptr) DeleteCamera(camera);
  }
  FUZZ_CHECK(fuzz::LiveBlocks() == liveAtStart);
  return 0;
}
