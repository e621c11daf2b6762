// Cameras: default names, field-of-view and near rules, and deletion out of
// scenes and hierarchies.
#include <cmath>
#include <string>

#include "engine3d.h"
#include "objects/camera.h"
#include "objects/scene.h"
#include "support/test_host.h"

namespace {

class CameraTest : public testhost::LeakCheckedTest {
 protected:
  const Vector3 eye{1.0f, 2.0f, 3.0f}, at{4.0f, 5.0f, 6.0f};
  Camera* Make() { return CreateCamera(&eye, &at, 0.0f, 60.0f, 10.0f); }
};

TEST_F(CameraTest, NamesAndRangeRules) {
  e3d::cameraCounter = 0;
  Camera* c = CreateCamera(&eye, &at, 15.0f, 0.0f, 5.0f);
  ASSERT_NE(c, nullptr);
  EXPECT_STREQ(c->name, "Camera00");
  // Creation takes values as given: only the setters apply the range rules.
  EXPECT_TRUE(GetCameraFov(c) == 0.0f && GetCameraNear(c) == 5.0f && c->farPlane == 10000.0f);
  SetCameraName(c, std::string(60, 'x').c_str());
  EXPECT_EQ(std::string(c->name), std::string(e3d::kCameraNameSize - 1, 'x'));
  // A field of view outside (0, 180] falls back to 60; the near plane is at least 10.
  const float fovs[][2] = {{180, 180}, {0.001f, 0.001f}, {180.5f, 60}, {-0.0f, 60}, {NAN, 60}};
  for (auto& f : fovs) {
    SetCameraFov(c, 1.0f);
    SetCameraFov(c, f[0]);
    EXPECT_EQ(GetCameraFov(c), f[1]) << f[0];
  }
  SetCameraNear(c, 9.5f);
  EXPECT_EQ(GetCameraNear(c), 10.0f);
  DeleteCamera(c);

  auto nextName = [this] {
    Camera* k = Make();
    std::string name = k->name;
    DeleteCamera(k);
    return name;
  };
  testhost::FailAllocation(1);
  EXPECT_EQ(Make(), nullptr);  // uses up no number
  EXPECT_EQ(nextName(), "Camera01");
  e3d::cameraCounter = 1000;  // past the three digits the numbering was made for
  EXPECT_EQ(nextName(), "Camera1000");
}

TEST_F(CameraTest, DeleteLeavesItsSceneAndHierarchy) {
  Scene* s = CreateScene();
  Camera *a = Make(), *b = Make(), *c = Make(), *child = Make(), *aimed = Make();
  for (Camera* k : {a, b, c}) ASSERT_EQ(AssignCameraToScene(s, k), 1);
  SetActivedSceneCamera(s, c);
  ASSERT_EQ(AttachChildToNode(a, b), 1);
  ASSERT_EQ(AttachChildToNode(b, child), 1);
  ASSERT_EQ(AttachChildToNode(&b->targetNodeKind, &aimed->targetNodeKind), 1);
  ASSERT_EQ(AttachChildToNode(a, &b->targetNodeKind), 1);
  DeleteCamera(b);  // the active one moves with its place in the list
  EXPECT_TRUE(SearchCameraByIndex(s, 1) == c && GetActivedSceneCamera(s) == c);
  // Child arrays freed, nobody points at the freed record.
  EXPECT_TRUE(a->childCount == 0 && a->children == nullptr);
  EXPECT_TRUE(child->parent == nullptr && aimed->targetParent == nullptr);
  DeleteCamera(a);
  DeleteCamera(c);
  EXPECT_TRUE(s->firstCamera == nullptr && GetActivedSceneCamera(s) == nullptr);
  DeleteCamera(child);
  DeleteCamera(aimed);
  DeleteScene(s);
}

}  // namespace
