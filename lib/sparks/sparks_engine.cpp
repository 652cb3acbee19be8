#include "sparks_engine.h"

#include "am_archivemanager.h"
#include "xml_parser.h"
#include "ztk_system.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace zentrak::sparks {

using mathbase::Matrix4x4Col;
using mathbase::Vector3f;
using mathbase::Vector4f;

namespace {

const std::string EXTENSION = ".xml";

constexpr float GRAVITY = -9.81f; // world units per second squared
constexpr float FALLING_MASS = 0.01f;
constexpr float LEAST_SIZE = 0.8f;
constexpr float LEAST_ENERGY = 0.1f;
constexpr float FADE_IN = 0.2f;      // seconds
constexpr int CELLS = 8;             // in the strip
constexpr float CELL_WIDTH = 0.125f; // in texture coordinates
constexpr float PI = 3.1415927f;

// powf(2.7182817f, exponent), with that float as the base rather than e, to within one ulp.
float decay(float exponent) {
    constexpr double LOG2_BASE = 1.4426949970774024;
    return float(exp2(LOG2_BASE * double(exponent)));
}

Vector3f halfAxis(const Matrix4x4Col& cameraInverse, const Vector3f& axis) {
    return cameraInverse.multiplyVector(axis).getNormalized() * 0.5f;
}

} // namespace

Engine::Engine(display::DisplayGL* owner) : random(clockRandom()), display(owner), texture(nullptr) {}

Engine::~Engine() {
    printf("Particles used (max): %d\n", allocated);
}

float Engine::now() const {
    return display ? float(display->getTime()) : 0.0f;
}

void Engine::load(std::string name) {
    if (name.substr(name.size() - 4) != EXTENSION) // throws for a shorter name, on purpose
        name += EXTENSION;
    ztk_print("Sparks: Loading %s\n", name.c_str());
    if (!display || !display->mArchiveManager)
        return;
    const am::File file = display->mArchiveManager->readFile(name);
    if (!file)
        return;
    xml::XmlParser document;
    readNamed(name, [&] { document.parse(reinterpret_cast<const char*>(file->data), int(file->length)); });
    if (document.getName() != "spark")
        return;
    xml::IteratorConst it(&document, "instance");
    while (++it) {
        auto instance = std::make_unique<EmitterInstance>();
        instance->load(it);
        instances.push_back(instance.get());
        mLoaded.push_back(std::move(instance));
    }
}

bool Engine::save(std::string name) const {
    if (!name.ends_with(EXTENSION))
        name += EXTENSION;
    if (!display || !display->mArchiveManager)
        return false;
    xml::XmlParser document;
    document.setName("spark");
    xml::Iterator it(&document, "");
    for (const EmitterInstance* instance : instances)
        instance->save(it);
    std::string text;
    document.write(text, "\t");
    const am::File file(new am::FileStructure(name, text.data(), long(text.size())));
    return display->mArchiveManager->writeFile(file);
}

EmitterInstance* Engine::getInstance(const std::string& name) const {
    for (EmitterInstance* instance : instances)
        if (instance->name == name)
            return instance;
    ZTK_LOG("warning", "sparks", "Sparks: No instance '%s'", name.c_str());
    return nullptr;
}

void Engine::setup() {
    isSetup = true;
    texture.setDisplay(display);
    if (!texture.isLoaded())
        texture.load("sparks.png", true);
}

// A particle whose size or energy is NaN dies too.
void Engine::update(float time) {
    if (lastTime < 0)
        lastTime = time;
    dt = time - lastTime;
    for (EmitterInstance* instance : active)
        instance->update(time, dt);
    if (!isSetup)
        setup();
    for (Spark** link = &live; *link;) {
        Spark& spark = **link;
        if (spark.mass > FALLING_MASS)
            spark.velocity.y += GRAVITY * dt;
        spark.position += spark.velocity * dt;
        spark.size *= decay(-spark.sizedecay * dt);
        spark.energy *= decay(-spark.energydecay * dt);
        if (spark.size >= LEAST_SIZE && spark.energy >= LEAST_ENERGY) {
            link = &spark.next;
            continue;
        }
        *link = spark.next;
        spark.next = free;
        free = &spark;
    }
    lastTime = time;
}

// Sprites are deliberately upside down: the strip's top row is at their lower edge.
void Engine::draw(const Matrix4x4Col* cameraInverse) {
    if (!isSetup)
        setup();
    const Vector3f right = halfAxis(*cameraInverse, Vector3f(1, 0, 0));
    const Vector3f up = halfAxis(*cameraInverse, Vector3f(0, -1, 0));

    GL_CALL(glEnable(GL_BLEND));
    GL_CALL(glEnable(GL_POINT_SMOOTH));
    GL_CALL(glBlendFunc(GL_SRC_ALPHA, GL_ONE));
    GL_CALL(glEnable(GL_TEXTURE_2D));
    texture.bind();
    if (!mCutRead) {
        mCut.readTexture(CELLS);
        mCutRead = true;
    }
    mCut.look(right, -up);
    const float time = now();
    for (const Spark* spark = live; spark; spark = spark->next) {
        const float age = time - (spark->time + spark->timeoffset);
        if (!(age > 0))
            continue;
        const float flicker = float(random.draw() & 1);
        float alpha = (1.0f - flicker * spark->noise) * std::min(spark->energy, 1.0f) * spark->intensity;
        if (age < FADE_IN)
            alpha *= sinf(PI * age * 2.5f);
        const Vector3f& colour = spark->colour;
        const Vector4f color(colour.x, colour.y, colour.z, alpha);
        mBatch.color(color);
        const float u0 = CELL_WIDTH * float(spark->texture);
        mCut.draw(mBatch, spark->position, spark->size, color, spark->texture, u0, 1, u0 + CELL_WIDTH, 0);
    }
    mBatch.flush();
    texture.unbind();
    GL_CALL(glDisable(GL_TEXTURE_2D));
}

void Engine::addSpark(const Spark& spark) {
    Spark* added = getFreeElement();
    if (!added)
        return;
    *added = spark;
    added->next = live;
    added->time = now();
    live = added;
}

Spark* Engine::getFreeElement() {
    if (free) {
        Spark* element = free;
        free = element->next;
        return element;
    }
    if (allocated == MAX_ALLOCATED) {
        reportLimit("the engine", MAX_ALLOCATED);
        return nullptr;
    }
    if (allocated % BLOCK == 0)
        mBlocks.push_back(std::make_unique<Spark[]>(BLOCK));
    return &mBlocks.back()[size_t(allocated++ % BLOCK)];
}

void Engine::reportLimit(const std::string& who, int limit) {
    if (mLimitReported)
        return;
    mLimitReported = true;
    ZTK_LOG("warning", "sparks", "Sparks: More particles than %s can have (%d); the others are left out",
            who.c_str(), limit);
}

} // namespace zentrak::sparks
