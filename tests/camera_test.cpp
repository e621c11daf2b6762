// Cameras: default names, field-of-view and near rules, and deletion out of
// scenes and hierarchies.
#include <cmath>
#include <cstring>
#include <string>

#include "engine3d.h"
#include "objects/camera.h"
#include "objects/scene.h"
#include "support/test_host.h"

namespace {

class CameraTest : public testhost::LeakCheckedTest {
 protected:
  const Vector3 eye{1.0f, 2.0f, 3.0f};
  const Vector3 at{4.0f, 5.0f, 6.0f};
  Camera* Make() { return CreateCamera(&eye, &at, 0.0f, 60.0f, 10.0f); }
};

TEST_F(CameraTest, CreationNamesAndCounter) {
  e3d::cameraCounter = 0;
  Camera* c = CreateCamera(&eye, &at, 15.0f, 0.0f, 5.0f);
  ASSERT_NE(c, nullptr);
  EXPECT_STREQ(c->name, "Camera00");
  // Creation takes values as given: only the setters apply the range rules.
  EXPECT_EQ(GetCameraFov(c), 0.0f);
  EXPECT_EQ(GetCameraNear(c), 5.0f);
  EXPECT_EQ(GetCameraRoll(c), 15.0f);
  EXPECT_EQ(c->farPlane, 10000.0f);
  EXPECT_EQ(c->nodeKind, 4u);
  EXPECT_EQ(c->targetNodeKind, 8u);
  EXPECT_EQ(c->cameraFlags, 0u);
  const Vector3 v{7.0f, 8.0f, 9.0f};
  SetCameraPosition(c, &v, 2);  // any non-zero which is the target
  EXPECT_EQ(GetCameraPosition(c, -7).z, 9.0f);
  EXPECT_EQ(GetCameraPosition(c, 0).x, 1.0f);

  SetCameraName(c, nullptr);
  EXPECT_STREQ(c->name, "Camera00");
  SetCameraName(c, std::string(60, 'x').c_str());
  EXPECT_EQ(std::string(c->name), std::string(e3d::kCameraNameSize - 1, 'x'));
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
  e3d::cameraCounter = 10;
  EXPECT_EQ(nextName(), "Camera10");
  e3d::cameraCounter = 1000;  // past the three digits the numbering was made for
  EXPECT_EQ(nextName(), "Camera1000");
}

TEST_F(CameraTest, FovAndNearRules) {
  Camera* c = Make();
  const float fovs[][2] = {{180.0f, 180.0f}, {180.5f, 60.0f}, {0.0f, 60.0f}, {-30.0f, 60.0f},
                           {0.001f, 0.001f}, {NAN, 60.0f},    {-0.0f, 60.0f}};
  for (auto& f : fovs) {
    SetCameraFov(c, 1.0f);
    SetCameraFov(c, f[0]);
    EXPECT_EQ(GetCameraFov(c), f[1]) << f[0];
  }
  const float nears[][2] = {{5.0f, 10.0f}, {10.0f, 10.0f}, {-INFINITY, 10.0f}, {1e30f, 1e30f}};
  for (auto& n : nears) {
    SetCameraNear(c, n[0]);
    EXPECT_EQ(GetCameraNear(c), n[1]) << n[0];
  }
  SetCameraRoll(c, -45.0f);
  EXPECT_EQ(GetCameraRoll(c), -45.0f);
  DeleteCamera(c);
}

TEST_F(CameraTest, DeleteTakesTheCameraOutOfItsScene) {
  Scene* first = CreateScene();
  Scene* second = CreateScene();
  Camera* a = Make();
  Camera* b = Make();
  Camera* c = Make();
  ASSERT_EQ(AssignCameraToScene(second, a), 1);
  ASSERT_EQ(AssignCameraToScene(second, b), 1);
  ASSERT_EQ(AssignCameraToScene(second, c), 1);
  SetActivedSceneCamera(second, c);
  DeleteCamera(b);  // the active one moves with its place in the list
  EXPECT_EQ(GetSceneNumberOfCameras(second), 2);
  EXPECT_EQ(SearchCameraByIndex(second, 1), c);
  EXPECT_EQ(GetActivedSceneCamera(second), c);
  EXPECT_EQ(GetSceneNumberOfCameras(first), 0);
  DeleteCamera(a);
  EXPECT_EQ(second->firstCamera, c);
  EXPECT_EQ(c->prevCamera, nullptr);
  DeleteCamera(c);
  EXPECT_EQ(second->firstCamera, nullptr);
  EXPECT_EQ(GetActivedSceneCamera(second), nullptr);
  DeleteScene(first);
  DeleteScene(second);
}

TEST_F(CameraTest, DeleteLeavesTheHierarchy) {
  Camera* parent = Make();
  Camera* middle = Make();
  Camera* child = Make();
  Camera* aimed = Make();
  ASSERT_EQ(AttachChildToNode(parent, middle), 1);
  ASSERT_EQ(AttachChildToNode(middle, child), 1);
  ASSERT_EQ(AttachChildToNode(&middle->targetNodeKind, &aimed->targetNodeKind), 1);
  ASSERT_EQ(AttachChildToNode(parent, &middle->targetNodeKind), 1);
  DeleteCamera(middle);  // child arrays freed, nobody points at the freed record
  EXPECT_EQ(parent->childCount, 0);
  EXPECT_EQ(parent->children, nullptr);
  EXPECT_EQ(child->parent, nullptr);
  EXPECT_EQ(aimed->targetParent, nullptr);
  DeleteCamera(parent);
  DeleteCamera(child);
  DeleteCamera(aimed);
}

}  // namespace
