#include "cl_readbuffer.h"
#include "cl_writebuffer.h"
#include "o3d_bytes.h"

#include <gtest/gtest.h>

using namespace zentrak;
using namespace zentrak::test;

namespace {

// The bytes written for a value.
template <typename T>
std::string written(const T& value) {
    chunklib::WriteBuffer buffer("O3DF", 1, 1, 1);
    o3d::writeValue(buffer, value);
    return std::string(buffer.mData.begin() + 6, buffer.mData.end());
}

// `value` after reading it from a chunk with these bytes.
template <typename T>
T read(const std::string& payload, T value) {
    const std::string stream = "O3DF\x01\x01" + chunk(0xABC0, payload) + "more bytes behind the chunk";
    chunklib::ReadBuffer buffer(stream.data(), int(stream.size()));
    buffer.openChunk();
    o3d::loadValue(buffer, &value);
    return value;
}

TEST(Value, IsWrittenAsItsEncoding) {
    EXPECT_EQ(text("name"), written(std::string("name")));
    EXPECT_EQ(text(""), written(std::string()));
    o3d::Index index;
    index.mValue = -2;
    EXPECT_EQ(i32(-2), written(index));
    o3d::Triangle triangle;
    triangle.mFlag = 9;
    triangle.mIndex[0] = 1;
    triangle.mIndex[1] = 2;
    triangle.mIndex[2] = 70000;
    EXPECT_EQ(u8(9) + i32(1) + i32(2) + i32(70000), written(triangle));
    EXPECT_EQ(floats({1, 2, 3, 4}), written(o3d::Quatf(1, 2, 3, 4))); // w first
    EXPECT_EQ(floats({1, 2, 3, 4}), written(o3d::Vector4f(1, 2, 3, 4)));
    EXPECT_EQ(floats({1, 2, 3}), written(o3d::Vector3f(1, 2, 3)));
    EXPECT_EQ(floats({1, 2}), written(o3d::Vector2f(1, 2)));
    EXPECT_EQ(floats({1.5f}), written(1.5f));
    o3d::BoneGroupWeight weight;
    weight.mFirst = 7;
    weight.mSecond = 0xFFFFFFFF;
    EXPECT_EQ(u32(7) + u32(0xFFFFFFFF), written(weight));
}

TEST(Value, IsReadFromItsEncoding) {
    EXPECT_EQ("name", read(text("name") + "rest", std::string("before")));
    EXPECT_EQ(-2, read(i32(-2), o3d::Index()).mValue);
    const o3d::Triangle triangle = read(u8(9) + i32(1) + i32(2) + i32(70000), o3d::Triangle());
    EXPECT_EQ(9, triangle.mFlag);
    EXPECT_EQ(1, triangle.mIndex[0]);
    EXPECT_EQ(2, triangle.mIndex[1]);
    EXPECT_EQ(70000, triangle.mIndex[2]);
    EXPECT_EQ(o3d::Quatf(1, 2, 3, 4), read(floats({1, 2, 3, 4}), o3d::Quatf()));
    EXPECT_EQ(o3d::Vector4f(1, 2, 3, 4), read(floats({1, 2, 3, 4}), o3d::Vector4f()));
    EXPECT_EQ(o3d::Vector3f(1, 2, 3), read(floats({1, 2, 3}), o3d::Vector3f()));
    EXPECT_EQ(o3d::Vector2f(1, 2), read(floats({1, 2}), o3d::Vector2f()));
    EXPECT_EQ(1.5f, read(floats({1.5f}), 0.0f));
    const o3d::BoneGroupWeight weight = read(u32(7) + u32(8), o3d::BoneGroupWeight());
    EXPECT_EQ(7u, weight.mFirst);
    EXPECT_EQ(8u, weight.mSecond);
}

TEST(Value, ComponentsPastTheChunkStayAsTheyWere) {
    EXPECT_EQ(o3d::Vector3f(1, 8, 9), read(f32(1) + "abc", o3d::Vector3f(7, 8, 9)));
    EXPECT_EQ(o3d::Quatf(6, 7, 8, 9), read("abc", o3d::Quatf(6, 7, 8, 9)));
    EXPECT_EQ(5.0f, read("", 5.0f));
}

TEST(ValueDeathTest, ATextWithoutItsZeroByteAsserts) {
    EXPECT_DEATH(read("name", std::string()), "Assertion.*false");
    EXPECT_DEATH(read("", std::string()), "Assertion.*false");
}

} // namespace
