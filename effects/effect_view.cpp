#include "effect_view.h"

#include "dis_display.h"
#include "mb_matrix4x4col.h"

namespace zentrak::kindler {

using mathbase::Matrix4x4Col;
using mathbase::Vector3f;

void setClipSpace(display::DisplayGL& display) {
    Matrix4x4Col identity;
    identity.setIdentity();
    display.setProject(identity);
    display.setTransform(identity);
    display.setCamera(identity);
}

void setPerspective(display::DisplayGL& display, float fovy, float znear, float zfar) {
    Matrix4x4Col project;
    project.setProject(fovy, EFFECT_ASPECT, znear, zfar);
    display.setProject(project);
}

void setView(display::DisplayGL& display, const Lens& lens, const Vector3f& eye, const Vector3f& target,
             float roll) {
    setPerspective(display, lens.fovy, lens.znear, lens.zfar);
    display.setTransform(Matrix4x4Col());
    setCamera(display, eye, target, roll);
}

void setCamera(display::DisplayGL& display, const Vector3f& eye, const Vector3f& target, float roll) {
    display.mCameraMatrix.setCamera(eye, target, roll);
    display.setModelView();
}

Billboard::Billboard(const Vector3f& eye, const Vector3f& target, float roll) {
    Matrix4x4Col camera;
    camera.setCameraInv(eye, target, roll);
    right = camera.multiplyVector(Vector3f(1, 0, 0));
    up = camera.multiplyVector(Vector3f(0, 1, 0));
    right.normalize();
    up.normalize();
    right *= 0.5f;
    up *= 0.5f;
}

} // namespace zentrak::kindler
