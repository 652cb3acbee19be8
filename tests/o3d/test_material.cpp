#include "o3d_bytes.h"

#include <gtest/gtest.h>

using namespace zentrak;
using namespace zentrak::test;

namespace {

// The first material of a file, with these children.
std::unique_ptr<o3d::Manager> materialWith(const std::string& children) {
    auto manager = std::make_unique<o3d::Manager>();
    load(*manager, file(chunk(0x6000, text("m") + children)));
    return manager;
}

TEST(Material, WithOnlyItsNameHasTheFirstFlagClearAndTheSecondSet) {
    const auto manager = materialWith("");
    EXPECT_FALSE(manager->mMaterials.at(0)->mFlag1);
    EXPECT_TRUE(manager->mMaterials.at(0)->mFlag2);
    EXPECT_EQ("m", manager->mMaterials.at(0)->mName);
}

TEST(Material, FlagIsSetByAByteOfOneOnly) {
    for (const unsigned byte : {0u, 1u, 2u, 255u}) {
        const auto manager = materialWith(chunk(0x6101, u8(byte)) + chunk(0x6111, u8(byte)));
        EXPECT_EQ(byte == 1, manager->mMaterials.at(0)->mFlag1) << byte;
        EXPECT_EQ(byte == 1, manager->mMaterials.at(0)->mFlag2) << byte;
    }
}

TEST(Material, FlagWhoseByteIsMissingKeepsItsDefault) {
    o3d::Manager manager;
    std::string image = file(chunk(0x6000, text("m") + chunk(0x6111, u8(0))));
    image.pop_back();
    load(manager, image);
    EXPECT_TRUE(manager.mMaterials.at(0)->mFlag2);
}

TEST(Material, AttributesKeepTheirOrder) {
    const auto manager = materialWith(chunk(0x6100, text("b")) + chunk(0x6100, text("a")));
    const auto& attributes = manager->mMaterials.at(0)->mAttributes;
    ASSERT_EQ(2u, attributes.size());
    EXPECT_EQ("b", attributes[0]->mName);
    EXPECT_EQ("a", attributes[1]->mName);
}

TEST(Material, TextureValueIsAnUnsignedByte) {
    const auto manager = materialWith(chunk(
        0x6100, text("a") + chunk(0x7000, text("t") + chunk(0x7001, u8(200))) + chunk(0x7000, text("u"))));
    const auto& textures = manager->mMaterials.at(0)->mAttributes.at(0)->mTextures;
    ASSERT_EQ(2u, textures.size());
    EXPECT_EQ(200, textures[0]->mValue);
    EXPECT_EQ(0, textures[1]->mValue);
}

TEST(Material, TexturesOutliveTheirMaterial) {
    auto manager = materialWith(chunk(0x6100, text("a") + chunk(0x7000, text("kept"))));
    o3d::Texture* const texture = manager->mMaterials.at(0)->mAttributes.at(0)->mTextures.at(0);
    manager.reset();
    EXPECT_EQ("kept", texture->mName);
}

TEST(Material, ClearGoesBackToTheDefaults) {
    const auto manager = materialWith(chunk(0x6101, u8(1)) + chunk(0x6111, u8(0)) + chunk(0x6100, text("a")));
    o3d::Material& material = *manager->mMaterials.at(0);
    material.clear();
    EXPECT_EQ("", material.mName);
    EXPECT_FALSE(material.mFlag1);
    EXPECT_TRUE(material.mFlag2);
    EXPECT_TRUE(material.mAttributes.empty());

    o3d::Texture texture;
    texture.mName = texture.mImageName = "x";
    texture.mValue = 3;
    texture.clear();
    EXPECT_TRUE(texture.mName.empty() && texture.mImageName.empty() && texture.mValue == 0);
    o3d::Image image;
    image.mName = image.mFileName = "x";
    image.clear();
    EXPECT_TRUE(image.mName.empty() && image.mFileName.empty());
}

} // namespace
