#include "o3d_bytes.h"

namespace zentrak::test {

std::string everything() {
    const std::string vectorTrack = keyList(0xFB10, 2, 0, floats({-1, 0, 0, 1, 1, 2, 1, 3, 2, 4, 3, 5})) +
                                    keyList(0xFB20, 1, 2, key(0, 1) + key(4, 2)) +
                                    keyList(0xFB30, 0, 3, key(1, 1)) + chunk(0xF006, floats({7, 8, 9}));
    const std::string colorTrack = keyList(0xFB00, 1, 0, key(0, 0) + key(1, 1)) +
                                   keyList(0xFB10, 1, 0, key(0, 1) + key(2, 0)) +
                                   keyList(0xFB20, 1, 0, key(0, 1)) + keyList(0xFB30, 1, 0, key(3, 1)) +
                                   chunk(0xF007, floats({0.1f, 0.2f, 0.3f, 0.4f}));
    const std::string floatTrack = keyList(0xFB10, 1, 1, key(0, 1) + key(9, 2)) + chunk(0xF004, f32(0.5f));
    const std::string transform =
        chunk(0xFA00, vectorTrack) + chunk(0xFA10, vectorTrack) + chunk(0xFA20, vectorTrack);

    const std::string mesh =
        chunk(0x2000, text("mesh") + chunk(0xFF00, floats({0, 0, 0, 1, 0, 0, 0, 1, 0, 1, 1, 1})) +
                          chunk(0x2300, i32(3) + i32(0) + f32(1)) +
                          chunk(0x2200, u8(0) + chunk(0xFF30, triangle(0, 1, 2) + triangle(1, 3, 2)) +
                                            chunk(0xFF60, i32(0) + i32(1) + i32(2) + i32(3)) +
                                            chunk(0xFF10, floats({0, 0, 0, 1, 0, 0, 0, 1, 0, 1, 1, 0}))) +
                          chunk(0x2200, u8(1) + chunk(0xFF30, triangle(0, 1, 2)) +
                                            chunk(0xFF60, i32(1) + i32(3) + i32(2))) +
                          chunk(0x6200, text("stone") + text("red")));
    const std::string texture =
        chunk(0x7000, text("wall") + chunk(0xF030, text("image")) + chunk(0x7001, u8(200)));
    const std::string material =
        chunk(0x6000,
              text("stone") + chunk(0x6101, u8(1)) + chunk(0x6111, u8(0)) +
                  chunk(0x6100, text("diffuse") + chunk(0xF007, floats({0.5f, 0.25f, 0.125f, 1})) + texture));
    const std::string image = chunk(0x4000, text("image") + chunk(0xF020, text("wall.png")));
    const std::string leaf = chunk(0x5190, text("leaf") + floats({0, 0, 0, 1, 0, 0, 0, 1}));
    const std::string root =
        chunk(0x5190, text("root") + floats({1, 0, 0, 1, 0, 0, 0, 2}) + chunk(0xFA50, colorTrack) + leaf);
    const std::string armature = chunk(0x5180, text("skeleton") + transform + root);
    const std::string camera = chunk(0x5110, text("camera") + chunk(0xFA40, floatTrack) + transform);
    const std::string light = chunk(0x5140, text("lamp") + chunk(0xFA30, colorTrack) +
                                                chunk(0x5160, floatTrack) + chunk(0x5150, floatTrack) +
                                                chunk(0xFA40, floatTrack) + chunk(0x5151, u8(1)) + transform);
    const std::string instance =
        chunk(0x5120, text("wall") + text("mesh") + chunk(0x6210, u8(1) + text("stone")) + transform +
                          chunk(0x5130, text("child") + transform));
    const std::string group = chunk(0x5130, text("group") + transform + instance);
    return file(mesh + material + image +
                chunk(0x5000, text("scene") + transform + camera + light + armature + group));
}

} // namespace zentrak::test
