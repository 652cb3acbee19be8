#include "plain.h"

#include "am_archivemanager.h"
#include "plain_box.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace zentrak::test::plain {

using mathbase::Eulerf;
using mathbase::Quatf;

namespace {

constexpr float PI = 3.14159265f;

const unsigned char* bytesAt(const am::ImageObject& image, int x, int y) { // blue, green, red, alpha
    return image.getData() + (y * image.getWidth() + x) * 4;
}

Matrix4x4Col transformOf(const Vector3f& position, const Quatf& rotation, float scale = 1) {
    Matrix4x4Col matrix;
    matrix.buildPRS(position, rotation, Vector3f(scale, scale, scale));
    return matrix;
}

Matrix4x4Col cameraOf(const Vector3f& eye, const Vector3f& target, float roll) {
    Matrix4x4Col matrix;
    matrix.setCamera(eye, target, roll);
    return matrix;
}

// As the driver's frame has left it when an effect draws.
void leave(DisplayGL& display) {
    display.resetStates();
}

} // namespace

Vector3f Numbers::sphere() {
    const float s1 = u(), s2 = u();
    const float z = 2 * s2 - 1, phi = 2 * PI * s1, r = sqrtf(1 - z * z);
    return Vector3f(r * cosf(phi), r * sinf(phi), z);
}

void place(const Matrix4x4Col& camera, const Matrix4x4Col& transform) {
    Matrix4x4Col product = camera;
    product.multiplyFromRight(transform);
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixf(product.mData);
}

void box(float hx, float hy, float hz) {
    plainBox(Vector3f(0, 0, 0), Vector3f(hx, hy, hz));
}

void perspective(float fovy, float znear, float zfar) {
    Matrix4x4Col matrix;
    matrix.setProject(fovy, 1.6f, znear, zfar);
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixf(matrix.mData);
}

static void clipSpace() {
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
}

// Rund

void Rund::setup(DisplayGL& display) {
    mTexture.setDisplay(&display);
    mTexture.load("rund/rund.png", true);
    mTexture.init();
    for (Record& r : records) {
        r.x = 2.4f * mNumbers.u() - 1.2f;
        r.y = 2.4f * mNumbers.u() - 1.2f;
        r.scale = mNumbers.u() + 1;
        r.speed = 2 * mNumbers.u() - 1;
    }
}

void Rund::update(DisplayGL& display, float time, float delta) {
    arne += 0.5f * delta;
    clipSpace();
    glDisable(GL_CULL_FACE);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_LIGHTING);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glEnable(GL_TEXTURE_2D);
    mTexture.bind();
    for (int i = 0; i < 20; ++i) {
        Record& r = records[i];
        r.x += delta * r.speed;
        if (r.x > 1.2f)
            r.x -= 3.4f;
        const float w = 2.0f * float(mTexture.getWidth()) / float(display.mWindowMode.width) * r.scale;
        const float h = 2.0f * float(mTexture.getHeight()) / float(display.mWindowMode.height) * r.scale;
        glLoadMatrixf(
            transformOf(Vector3f(r.x, r.y, 0), Quatf(Eulerf(0, 0, float(i) + r.scale * time))).mData);
        glColor4f(1, 0, 0, 0.03f * r.scale * alpha + 0.03f);
        glBegin(GL_QUADS);
        glTexCoord2f(0, 0);
        glVertex3f(0, h, 0);
        glTexCoord2f(1, 0);
        glVertex3f(w, h, 0);
        glTexCoord2f(1, 1);
        glVertex3f(w, 0, 0);
        glTexCoord2f(0, 1);
        glVertex3f(0, 0, 0);
        glEnd();
    }
    mTexture.unbind();
    glDisable(GL_TEXTURE_2D);
    if (arne < 2) {
        glLoadMatrixf(transformOf(Vector3f(0, 0, 0), Quatf(Eulerf(sinf(time) * PI, time, 0))).mData);
        for (int pass = 0; pass < 2; ++pass) {
            glBegin(GL_QUAD_STRIP);
            for (int k = 0; k <= 80; ++k) {
                const float a = 2 * PI * float(k) / 80;
                const float a2 = a + 0.03925f;
                const float rim = pass == 0 ? arne - 0.08f : arne + 0.02f;
                for (int v = 0; v < 2; ++v) {
                    if ((pass == 0) == (v == 0)) {
                        glColor4f(0.43f, 0, 0.34f, 0);
                        glVertex3f(0.625f * sinf(a2) * rim, cosf(a2) * rim, 0);
                    } else {
                        glColor4f(0.43f, 0, 0.34f, -1.2f * arne + 1.3f);
                        glVertex3f(0.625f * sinf(a) * arne, cosf(a) * arne, 0);
                    }
                }
            }
            glEnd();
        }
    }
    leave(display);
}

// Xor

Xor::Xor(uint32_t start) {
    Numbers numbers(start);
    for (int i = 0; i < 50000; ++i) {
        Record r;
        r.pos = Vector3f(5 * sinf(float(i) / 1000.234f), 5 * cosf(float(i) / 800.5453f),
                         5 * sinf(float(i) / 2000) * cosf(float(i) / 300.2343f));
        numbers.next();
        r.col = Vector3f(0, 0, 0);
        r.rot = numbers.sphere();
        mRecords.push_back(r);
    }
}

void Xor::update(DisplayGL& display, float time, float delta) {
    perspective(PI / 4, 0.15f, 1000);
    const int n = std::min(49999, int(time * 50000 * 0.01f));
    const Matrix4x4Col camera =
        cameraOf(Vector3f(15 * sinf(0.1f * time), 15 * sinf(time), 15 * cosf(0.1f * time)),
                 mRecords[size_t(n)].pos, 0);
    glDisable(GL_CULL_FACE);
    glEnable(GL_DEPTH_TEST);
    glDisable(GL_LIGHTING);
    glEnable(GL_BLEND);
    for (int k = std::max(0, n - 200); k < n; ++k) {
        const Record& r = mRecords[size_t(k)];
        place(camera, transformOf(r.pos, Quatf(Eulerf(r.rot))));
        Vector3f c = r.col;
        if (coll > 0)
            c = r.col * (1 - coll) + Vector3f(0, 0.2f, 0.6f) * coll;
        glColor4f(c.x, c.y, c.z, (0.3f - 0.002f * float(n - k)) * alpha);
        box(2, 2, 2);
    }
    leave(display);
    coll -= delta;
}

// Tunnel

Vector3f Tunnel::path(float t) {
    return Vector3f(float(sin(double(t)) + 5.05 * cos(0.2 * t) * sin(t + 1.5)),
                    float(cos(double(t)) + 2 * sin(2.0 * t)), float(10.0 * t));
}

Tunnel::Tunnel(uint32_t start) : mProgram(nullptr) {
    static const char* const colours[8] = {"e39e89", "8688b0", "a4c28c", "d0bf7c",
                                           "9bc3b2", "c9a1af", "d6dc96", "c0ebc0"};
    Numbers numbers(start);
    for (int i = 0; i < 1000; ++i)
        numbers.sphere(); // a table that nothing reads
    for (int i = 0; i < 153; ++i) {
        Ring ring;
        ring.pos = path((0.4f - 0.2f * float(i) / 153) * float(i));
        ring.rot = Vector3f(0, 0, float(numbers.next() % 4));
        ring.spin = Vector3f(0, 0, numbers.next() % 3 == 0 ? -5.0f : 5.0f);
        const float m = sinf(float(i) * (PI / 2) / 153);
        const uint32_t s3 = numbers.next(), s4 = numbers.next();
        numbers.next();
        const unsigned long hex = strtoul(colours[i % 8], nullptr, 16);
        const Vector3f base(float(hex >> 16) / 255, float(hex >> 8 & 255) / 255, float(hex & 255) / 255);
        ring.col = base * m + Vector3f(0.51f, 0.56f, 0.56f) * (1 - m);
        if (i % 2)
            ring.col = ring.col * 0.73f;
        const float k = float(s3 % 5 + 1), j = float(s4 % 4 + 1);
        ring.inner = k * m + (1 - m);
        ring.outer = (j + k) * m + 1.5f * (1 - m);
        rings.push_back(ring);
    }
}

void Tunnel::setup(DisplayGL& display) {
    mProgram.setDisplay(&display);
    mProgram.link("tunnel/tunnel.vert", "tunnel/tunnel.frag");
}

static void block(int n, float inner, float outer, float depth) {
    const float h = PI / float(n), c = cosf(h), s = sinf(h);
    const float in[2] = {s * inner, c * inner}, out[2] = {s * outer, c * outer};
    glBegin(GL_QUADS);
    // front
    glVertex3f(-in[0], in[1], -depth);
    glVertex3f(-out[0], out[1], -depth);
    glVertex3f(out[0], out[1], -depth);
    glVertex3f(in[0], in[1], -depth);
    // back
    glVertex3f(-in[0], in[1], depth);
    glVertex3f(in[0], in[1], depth);
    glVertex3f(out[0], out[1], depth);
    glVertex3f(-out[0], out[1], depth);
    // inner
    glVertex3f(-in[0], in[1], -depth);
    glVertex3f(in[0], in[1], -depth);
    glVertex3f(in[0], in[1], depth);
    glVertex3f(-in[0], in[1], depth);
    // outer
    glVertex3f(-out[0], out[1], -depth);
    glVertex3f(-out[0], out[1], depth);
    glVertex3f(out[0], out[1], depth);
    glVertex3f(out[0], out[1], -depth);
    // sides
    glVertex3f(in[0], in[1], -depth);
    glVertex3f(out[0], out[1], -depth);
    glVertex3f(out[0], out[1], depth);
    glVertex3f(in[0], in[1], depth);
    glVertex3f(-in[0], in[1], -depth);
    glVertex3f(-in[0], in[1], depth);
    glVertex3f(-out[0], out[1], depth);
    glVertex3f(-out[0], out[1], -depth);
    glEnd();
}

void Tunnel::update(DisplayGL&, float time, float delta) {
    perspective(PI / 4, 0.015f, 1000);
    const Vector3f eye = path(time - 1);
    const Matrix4x4Col camera = cameraOf(eye, path(time + 1), 2 * sinf(0.5f * time));
    glEnable(GL_BLEND);
    glEnable(GL_CULL_FACE);
    glEnable(GL_DEPTH_TEST);
    mProgram.bind();
    for (int i = 0; i < 153; ++i) {
        for (int b = 0; b < 64; ++b) {
            Ring& ring = rings[size_t(i)];
            const Vector3f d = ring.pos - eye;
            float dist = d.length() - 15, a = 1;
            if (dist < 0)
                dist = 0;
            else if (dist >= 25)
                continue;
            else
                a = 1 - 0.1f * dist;
            if (d.z <= 0 || a <= 0.05f)
                continue;
            if (i % 5 == 0 && (b == 0 || b == 15 || b == 31 || b == 47))
                continue;
            if (ring.spin.z > 0.1f)
                ring.spin.z -= 0.05f * delta;
            if (ring.spin.z < 0.1f)
                ring.spin.z += 0.05f * delta;
            const float theta = 2 * PI * float(b) / 68, s = sinf(-theta), c = cosf(-theta);
            const Vector3f e = ring.rot + ring.spin +
                               Vector3f(20 * sinf(0.005f * dist), 20 * sinf(0.0051f * dist), 0.7f * dist);
            Matrix4x4Col transform = transformOf(ring.pos, Quatf(Eulerf(e)));
            transform.multiplyFromRight(transformOf(Vector3f(0.1f * s * 15 * dist, 0.1f * c * 15 * dist, 0),
                                                    Quatf(Eulerf(0, 0, theta))));
            place(camera, transform);
            glColor4f(ring.col.x, ring.col.y, ring.col.z, a);
            block(68, ring.inner, ring.outer, 0.2f);
        }
    }
    mProgram.unbind();
    glDisable(GL_TEXTURE_2D);
    glDisable(GL_CULL_FACE);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_BLEND);
}

// Kub

void Kub::setup(DisplayGL& display) {
    mShade.setDisplay(&display);
    mShade.load("kub/shade.png", true);
    mShade.init();
    mProgram.setDisplay(&display);
    mProgram.link("kub/kub.vert", "kub/kub.frag");
    scatter(*display.mArchiveManager->loadImage("kub/kub.png", -1, false));
}

void Kub::scatter(const am::ImageObject& image) {
    for (int row = 0; row < image.getHeight(); ++row) {
        for (int column = 0; column < image.getWidth(); ++column) {
            const unsigned char* p = bytesAt(image, column, row);
            const float r = float(p[2]) / 256, g = float(p[1]) / 256, b = float(p[0]) / 256;
            if (r < 0.05f && g < 0.05f && b < 0.05f)
                continue;
            Cube cube;
            cube.x = float(column - 32);
            cube.y = float(row - 16);
            cube.col = Vector3f(r, g, b);
            cube.draw = Vector3f(cube.x, cube.y, 0);
            cubes.push_back(cube);
        }
    }
    for (int step = 0; step < 120; ++step) {
        const int budget = step == 0 ? 12 : 20 + 8 * (step - 1);
        for (int attempt = 0; attempt < budget; ++attempt) {
            Cube& cube = cubes[size_t(rand()) % cubes.size()];
            const float tx[4] = {cube.x + 1, cube.x - 1, cube.x, cube.x};
            const float ty[4] = {cube.y, cube.y, cube.y + 1, cube.y - 1};
            int best = 0;
            float px = 0, py = 0;
            if (rand() % 4 == 0) {
                best = rand() % 4;
            } else {
                double distance[4];
                for (int i = 0; i < 4; ++i)
                    distance[i] = sqrt(0.5 * tx[i] * 0.5 * tx[i] + double(ty[i]) * ty[i]);
                for (int i = 1; i < 4; ++i) {
                    if (i == 3) { // only the first three count for the growth
                        px = 0.5f * tx[best];
                        py = ty[best];
                    }
                    if (distance[i] > distance[best])
                        best = i;
                }
            }
            bool taken = false;
            for (const Cube& other : cubes)
                taken = taken || (int(other.x) == int(tx[best]) && int(other.y) == int(ty[best]));
            if (taken || (!cube.mods.empty() && cube.mods.back().step == step))
                continue;
            if (cube.mods.empty())
                cube.expand = (0.9f * mNumbers.u() + 0.1f) * (sqrtf(px * px + py * py) + 0.01f);
            cube.mods.push_back({tx[best] - cube.x, ty[best] - cube.y, step});
            cube.x = tx[best];
            cube.y = ty[best];
            cube.draw = Vector3f(cube.x, cube.y, 0);
            ++cube.count;
        }
    }
    frame = 120;
}

void Kub::step(float time, float delta) {
    fultimer += 4.5f * delta;
    if (time < 9.8f)
        fultimer = 0;
    else
        while (fultimer > 1) {
            for (Cube& cube : cubes) {
                if (cube.count > 0 && cube.mods[size_t(cube.count) - 1].step == frame) {
                    cube.x -= cube.mods[size_t(cube.count) - 1].dx;
                    cube.y -= cube.mods[size_t(cube.count) - 1].dy;
                    --cube.count;
                    cube.rot = Vector3f(0, 0, 0);
                    cube.draw.x = cube.x;
                    cube.draw.y = cube.y;
                }
            }
            --frame;
            fultimer -= 1;
        }
    pd += 0.005f * delta;
    const float t = fultimer;
    for (Cube& cube : cubes) {
        if (cube.count <= 0 || cube.mods[size_t(cube.count) - 1].step != frame)
            continue;
        const int dx = int(cube.mods[size_t(cube.count) - 1].dx);
        const int dy = int(cube.mods[size_t(cube.count) - 1].dy);
        if (dx > 0) {
            cube.draw = Vector3f(cube.x - t, cube.y, 0);
            cube.rot = Vector3f(0, 0, t * PI / 2);
        } else if (dx < 0) {
            cube.draw = Vector3f(cube.x + t, cube.y, 0);
            cube.rot = Vector3f(0, 0, -t * PI / 2);
        } else if (dy > 0) {
            cube.draw = Vector3f(cube.x, cube.y - t, 0);
            cube.rot = Vector3f(-t * PI / 2, 0, 0);
        } else {
            cube.draw = Vector3f(cube.x, cube.y + t, 0);
            cube.rot = Vector3f(t * PI / 2, 0, 0);
        }
        cube.draw.z = cube.amp * sinf(t * PI);
    }
}

void Kub::draw(DisplayGL& display, float time, float progress) {
    perspective(PI / 4, 0.15f, 1000);
    const float q = rexpandOn ? 0.1f * (time - rexpand) : 0;
    const float swing = sinf(pd * PI * 0.5f);
    Vector3f eye(0, 1000 * swing * swing, std::max(50 - time, 0.001f)), target(0, 0, 0);
    if (turnOn) {
        eye = Vector3f(0, 400, 0);
        target = Vector3f(400, 400, 0);
    }
    if (turnOn2) {
        eye = Vector3f(50, 1300, 50);
        target = Vector3f(0, 1350, 0);
    }
    const float a = sinf(modAngle) * sinf(modAngle);
    eye += Vector3f(0, 20, -1000) * a;
    target += Vector3f(0, -200, -1000) * a;
    const Matrix4x4Col camera = cameraOf(eye, target, 5 * a + q);

    glEnable(GL_CULL_FACE);
    glEnable(GL_DEPTH_TEST);
    glDisable(GL_LIGHTING);
    glEnable(GL_BLEND);
    place(camera, transformOf(Vector3f(0, -200.5f, 0), Quatf()));
    glColor4f(0.891f, 0.891f, 0.911f, alphaa);
    box(200, 200, 200);

    glEnable(GL_TEXTURE_2D);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    mShade.bind();
    mProgram.bind();
    mProgram.set("alpha", alphaa);
    for (const Cube& cube : cubes) {
        place(camera, transformOf(Vector3f(cube.draw.x, cube.draw.z, cube.draw.y), Quatf(Eulerf(cube.rot))));
        Vector3f c = cube.col;
        float h = 0.5f, b = -0.00075f;
        if (rexpandOn) {
            const float e = time - rexpand;
            h = 0.5f + 5 * e * cube.expand;
            const float w = std::min(0.2f * e, 1.0f);
            const float l = 0.3f * c.x + 0.59f * c.y + 0.11f * c.z;
            c = Vector3f(l, l, 1.3f * l) * w + c * (1 - w);
            b = -0.0015f * h;
        }
        if (turnOn) {
            const float m = (c.x + c.y + c.z) / 3;
            c = Vector3f(2 * m, 1.5f * m, m);
        }
        if (turnOn2) {
            float m = (c.x + c.y + c.z) / 3;
            c = Vector3f(m, 1.5f * m, m);
            m = (c.x + c.y + c.z) / 3;
            glColor4f(m, 1.5f * m, m, 0.4f);
        } else {
            glColor4f(c.x, c.y, c.z, b + 3 * progress);
        }
        box(0.5f, h, 0.5f);
    }
    mProgram.unbind();
    mShade.unbind();
    glDisable(GL_TEXTURE_2D);
    leave(display);
}

// Credits

Credits::Credits(uint32_t start, const am::ImageObject& image) {
    Numbers numbers(start);
    const float w = float(image.getWidth()), h = float(image.getHeight());
    for (int row = 0; row < image.getHeight(); ++row) {
        for (int column = 0; column < image.getWidth(); ++column) {
            const unsigned char* p = bytesAt(image, column, row);
            const float a = float(p[3]) / 255;
            if (!(a > 0.1f))
                continue;
            Record r;
            r.target = Vector3f(float(column) - 0.5f * w, 0.5f * h - float(row), 0);
            r.side = Vector3f(0, -float(numbers.next() % 701) - 300, 0);
            const float f = (w - float(column) - 1) / w;
            r.delay = 0.4f * f + 0.1f * (0.4f * f + 0.4f * numbers.u());
            r.start = Vector3f(2 * r.target.x, 2 * r.target.y, float(numbers.next() % 49751 + 250));
            r.col = Vector4f(float(p[2]) / 255, float(p[1]) / 255, float(p[0]) / 255, a);
            pixels.push_back(r);
        }
    }
}

void Credits::update(DisplayGL&, float delta) {
    perspective(PI / 4, 0.15f, 1000);
    glEnable(GL_BLEND);
    const Matrix4x4Col camera = cameraOf(Vector3f(0, 0, 200), Vector3f(0, 0, 0), 0.1f * boom * boom);
    for (const Record& r : pixels) {
        float f = zoom + r.delay, w = 0;
        if (f > 1)
            f = 1;
        else
            w = 1 - f;
        Vector3f p = r.start + (r.target - r.start) * f;
        if (explode) {
            p.z += 50.0999985f * boom * sinf(boom);
            boom += 0.002f * delta;
            if (boom > 5)
                boom = 5;
        }
        place(camera, transformOf(p, Quatf(Eulerf(p * (0.05f * w))), 1 + 5 * w));
        glColor4f(r.col.r, r.col.g, r.col.b, r.col.a - 0.6f * boom);
        box(0.5f, 0.5f, 0.5f);
    }
    glDisable(GL_BLEND);
}

// Grand

void Grand::setup(DisplayGL& display) {
    for (int n = 1; n <= 19; ++n) {
        char name[32];
        snprintf(name, sizeof name, "grand/grand%02d.png", n);
        const am::Image image = display.mArchiveManager->loadImage(name, -1, false);
        const float w = float(image->getWidth()), h = float(image->getHeight());
        for (int row = 0; row < image->getHeight(); ++row) {
            for (int column = 0; column < image->getWidth(); ++column) {
                const unsigned char* p = bytesAt(*image, column, row);
                if (!(float(p[3]) / 255 > 0.1f) || column >= 128)
                    continue;
                mColumns[column].push_back({Vector3f(0.015f * (float(column) - 0.5f * w),
                                                     0.015f * (0.5f * h - float(row)), 0.015f * float(n - 1)),
                                            Vector3f(float(p[2]) / 255, float(p[1]) / 255, float(p[0]) / 255),
                                            0.8f * mNumbers.u() + 0.2f});
            }
        }
    }
}

void Grand::update(DisplayGL&, float progress) {
    const float s = 10 * progress - 3.85f;
    for (int c = 0; c < 128; ++c) {
        const float v = s - 0.0152f * float(c);
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glRotatef(v < 0 ? 0.0f : v > 1 ? -90.0f : -90.0f * v, 1, 0, 0);
        glMatrixMode(GL_MODELVIEW);
        glEnable(GL_BLEND);
        for (const Record& r : mColumns[c]) {
            glLoadIdentity();
            glTranslatef(r.pos.x, r.pos.y, r.pos.z);
            glColor4f(r.col.x, r.col.y, r.col.z, std::min(1.0f, r.weight * alpha));
            box(0.01f, 0.01f, 0.01f);
        }
    }
    glDisable(GL_BLEND);
}

// Greet

Greet::Greet() : mSlab(new Slab()), mTexture(nullptr) {}

void Greet::setup(DisplayGL& display) {
    mImage = display.mArchiveManager->loadImage("greet/greet.png", -1, false);
    mTexture.setDisplay(&display);
    mTexture.load("vul/vul.png", true);
    mTexture.init();
}

void Greet::trigger() {
    for (int l = 0; l < 3; ++l)
        for (int y = 0; y < 24; ++y)
            for (int x = 0; x < 192; ++x) {
                const unsigned char* p = bytesAt(*mImage, x, 24 * mBand + y);
                const float a = float(p[3]) / 255;
                if (!(a > 0.05f))
                    continue;
                const float b = std::min(1.0f, 1.5f * a);
                mSlab->vol[l][23 - y][x] += l == 1 ? b : 0.3f * b;
                mSlab->col[l][23 - y][x] = Vector3f(float(p[2]) / 255, float(p[1]) / 255, float(p[0]) / 255);
            }
    if (mBand == 2) {
        from = Vector3f(-90, 0, 30);
        to = Vector3f(-10, 0, 0);
        roll = -0.8f;
    }
    ++mBand;
}

void Greet::update(DisplayGL&, float delta) {
    perspective(PI / 4, 0.15f, 1000);
    const Matrix4x4Col camera = cameraOf(from, to, roll);
    glDisable(GL_BLEND);
    glEnable(GL_CULL_FACE);
    glEnable(GL_DEPTH_TEST);
    glClear(GL_DEPTH_BUFFER_BIT);
    glEnable(GL_TEXTURE_2D);
    mTexture.bind();
    for (int l = 0; l < 3; ++l)
        for (int y = 0; y < 24; ++y)
            for (int x = 0; x < 192; ++x) {
                float& vol = mSlab->vol[l][y][x];
                if (delta > 0)
                    vol = std::max(0.0f, vol - 0.5f * delta);
                const float s = 0.75f * vol;
                const Vector3f& c = mSlab->col[l][y][x];
                place(camera, transformOf(Vector3f(float(x - 96), float(y - 12), float(l) - 1.5f),
                                          Quatf(Eulerf(s * float(x), s * float(y), s * float(l)))));
                glColor4f(c.x, c.y, c.z, 1);
                box(s, s, s);
            }
    mTexture.unbind();
    glDisable(GL_TEXTURE_2D);
}

// Vul

void Vul::setup(DisplayGL& display) {
    mTexture.setDisplay(&display);
    mTexture.load("vul/vul.png", true);
    mTexture.init();
}

void Vul::update(DisplayGL&, float time) {
    const float t = 0.2f * time;
    perspective(PI / 4, 0.15f, 1000);
    const Matrix4x4Col camera =
        cameraOf(Vector3f(20 * sinf(time), 20 * cosf(time), -20 * cosf(t)), Vector3f(0.1f, 0, 0), 0);
    const Vector3f centre(12.5f - 12.5f * cosf(4.2f * t), 12.5f - 12.5f * sinf(1.1f * t + PI),
                          12.5f + 12.5f * sinf(1.14f * t));
    glDisable(GL_BLEND);
    glEnable(GL_CULL_FACE);
    glEnable(GL_DEPTH_TEST);
    glClear(GL_DEPTH_BUFFER_BIT);
    mTexture.bind();
    for (int z = 0; z < 25; ++z)
        for (int y = 0; y < 25; ++y)
            for (int x = 0; x < 25; ++x) {
                const float l = (centre - Vector3f(float(x), float(y), float(z))).length();
                const float f = 1 / (1 + (l / 25) * (l / 25));
                const float v = 1.5f * powf(f, 4) - 0.5f * intensity;
                if (!(v > 0.005f))
                    continue;
                const float s = 0.75f * v;
                place(camera, transformOf(Vector3f(float(x - 10), float(y - 10), float(z - 10)),
                                          Quatf(Eulerf(float(x) * s, float(y) * s, float(z) * s))));
                const float colour[3] = {1, 1 - s, 0};
                glColor3fv(colour);
                box(s, s, s);
            }
    mTexture.unbind();
    glDisable(GL_TEXTURE_2D);
}

// Cubejox

Cubejox::Cubejox(uint32_t start) {
    Numbers numbers(start);
    for (int i = 0; i < 1000; ++i) {
        Rod rod;
        const float d = 200 + 50 * float(i % 4) + float(numbers.next() % 500) + 1;
        rod.pos = numbers.sphere() * d;
        rod.axis = (-rod.pos).getNormalized();
        rod.angle = 2 * PI * numbers.u();
        rod.spin = float(numbers.next() % 2);
        rod.sides = i % 5 + 4;
        rod.radius = 8;
        rods.push_back(rod);
    }
}

void Cubejox::update(DisplayGL& display, float time, float delta) {
    perspective(PI / 2, 0.01f, 2000);
    const Matrix4x4Col camera = cameraOf(
        Vector3f(120 * cosf(time), 120 * cosf(time), 120 * sinf(time) + 5000 * zoom), Vector3f(0, 0, 0), 0);
    glEnable(GL_BLEND);
    glEnable(GL_DEPTH_TEST);
    glDisable(GL_CULL_FACE);
    for (int i = 0; i < 1000; ++i) {
        Rod& rod = rods[size_t(i)];
        rod.angle += 5.1f * delta * rod.spin;
        const Vector3f y(0, 1, 0);
        Vector3f across = y.cross(rod.axis);
        across.normalize();
        const Quatf q1(rod.angle, y), q2(acosf(y.dot(rod.axis)), across);
        place(camera, transformOf(rod.pos, q2 * q1));
        Vector4f top = display.hex2vec("669955") * float(i % 3 + 1) * (1 - 0.5f * float(i % 4) / 3);
        Vector4f bottom = display.hex2vec("0c0c0c");
        const float l = 0.3f * top.r + 0.59f * top.g + 0.11f * top.b;
        const Vector4f grey = Vector4f(l, l, l, 1) * bw;
        for (Vector4f* c : {&top, &bottom}) {
            *c = *c * (1 - bw) + grey;
            c->r *= alpha;
            c->g *= alpha;
            c->b *= alpha;
            c->a *= 1 - 4 * zoom;
        }
        const float r = rod.radius;
        glBegin(GL_QUADS);
        for (int k = 0; k < 12; ++k) {
            const float a0 = 2 * PI * float(k) / 12, a1 = 2 * PI * float((k + 1) % 12) / 12;
            glColor4f(bottom.r, bottom.g, bottom.b, bottom.a);
            glVertex3f(r * sinf(a0), -15 * r, r * cosf(a0));
            glVertex3f(r * sinf(a1), -15 * r, r * cosf(a1));
            glColor4f(top.r, top.g, top.b, top.a);
            glVertex3f(r * sinf(a1), r, r * cosf(a1));
            glVertex3f(r * sinf(a0), r, r * cosf(a0));
        }
        glEnd();
        glBegin(GL_TRIANGLE_FAN);
        glVertex3f(0, r, 0);
        for (int k = 0; k <= 12; ++k) {
            const float a = 2 * PI * float(k) / 12;
            glVertex3f(r * sinf(a), r, r * cosf(a));
        }
        glEnd();
    }
}

// Face

void Face::setup(DisplayGL& display) {
    const am::File file = display.mArchiveManager->readFile("face/face.o3d");
    scene.load(file->data, int(file->length));
    mTexture.setDisplay(&display);
    mTexture.load("hurry/particle.png", true);
    mTexture.init();
}

void Face::update(DisplayGL& display, float time) {
    leave(display);
    perspective(PI / 4, 0.015f, 1000);
    const Vector3f eye(1.3f * sinf(2 * time), 0, 1.3f * cosf(2 * time));
    place(cameraOf(eye, Vector3f(0, 0, 0), 0), Matrix4x4Col());
    Matrix4x4Col inverse;
    inverse.setCameraInv(eye, Vector3f(0, 0, 0), 0);
    const Vector3f right = inverse.multiplyVector(Vector3f(1, 0, 0)).getNormalized() * 0.5f;
    const Vector3f up = inverse.multiplyVector(Vector3f(0, 1, 0)).getNormalized() * 0.5f;
    for (const o3d::Mesh* mesh : scene.mMeshes) {
        const std::vector<Vector3f> vertices = mesh->mVertices;
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE);
        glDisable(GL_CULL_FACE);
        glDisable(GL_DEPTH_TEST);
        glEnable(GL_TEXTURE_2D);
        mTexture.bind();
        glBegin(GL_QUADS);
        for (int pass = 0; pass < 2; ++pass)
            for (size_t i = 0; i < vertices.size(); i += 28) {
                const Vector3f v = vertices[i];
                const Vector3f n = inverse.multiply(v).getNormalized();
                if (n.z <= 0)
                    continue;
                const float c = n.z * alpha, s = pass == 0 ? 0.02f : 0.2f;
                if (pass == 0)
                    glColor4f(5 * c, 5 * 1.1f * c, 5 * 0.1f * c, 0.2f);
                else
                    glColor4f(0.3f * c, 0.2f * c, 0.1f * c, 0.4f);
                const auto corner = [&](float u, float w, const Vector3f& p) {
                    glTexCoord2f(u, w);
                    glVertex3f(p.x, p.y, p.z);
                };
                corner(0, 0, v + (up - right) * s);
                corner(0, 1, v + (-up - right) * s);
                corner(1, 1, v + (-up + right) * s);
                corner(1, 0, v + (up + right) * s);
            }
        glEnd();
        mTexture.unbind();
        glDisable(GL_TEXTURE_2D);
    }
}

} // namespace zentrak::test::plain
