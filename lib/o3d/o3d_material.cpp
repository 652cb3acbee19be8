#include "o3d_material.h"

#include "o3d_chunk.h"
#include "o3d_load.h"
#include "ztk_system.h"

#include <cstdio>
#include <memory>

namespace zentrak::o3d {

// Texture

void Texture::clear() {
    mName.clear();
    mImageName.clear();
    mValue = 0;
}

void Texture::loadChunk(chunklib::ReadBuffer& buffer) {
    mName = loadName(buffer);
    while (const uint16_t id = buffer.openChunk()) {
        if (id == CHUNK_IMAGENAME) {
            mImageName = loadName(buffer);
        } else if (id == CHUNK_TEXTUREVALUE) {
            unsigned char value = static_cast<unsigned char>(mValue);
            buffer.loadType(&value, 1);
            mValue = value;
        } else {
            printf("Unknown chunk with ID=0x%X\n", id);
        }
        buffer.closeChunk();
    }
}

void Texture::writeChunk(chunklib::WriteBuffer& buffer) const {
    const unsigned char value = static_cast<unsigned char>(mValue);
    buffer.openChunk(CHUNK_TEXTURE);
    writeValue(buffer, mName);
    buffer.openChunk(CHUNK_IMAGENAME);
    writeValue(buffer, mImageName);
    buffer.closeChunk();
    buffer.openChunk(CHUNK_TEXTUREVALUE);
    buffer.storeType(&value, 1);
    buffer.closeChunk();
    buffer.closeChunk();
}

// Image

void Image::clear() {
    mName.clear();
    mFileName.clear();
}

void Image::loadChunk(chunklib::ReadBuffer& buffer) {
    mName = loadName(buffer);
    while (const uint16_t id = buffer.openChunk()) {
        if (id == CHUNK_FILENAME)
            mFileName = loadName(buffer);
        else
            printf("Unknown chunk with ID=0x%X\n", id);
        buffer.closeChunk();
    }
}

void Image::writeChunk(chunklib::WriteBuffer& buffer) const {
    buffer.openChunk(CHUNK_IMAGE);
    writeValue(buffer, mName);
    buffer.openChunk(CHUNK_FILENAME);
    writeValue(buffer, mFileName);
    buffer.closeChunk();
    buffer.closeChunk();
}

// Material::Attribute

// A Texture is never destroyed: this keeps the textures of destroyed attributes reachable until the process
// ends.
static Texture* keepTexture(std::unique_ptr<Texture> texture) {
    static std::vector<std::unique_ptr<Texture>> kept;
    kept.push_back(std::move(texture));
    return kept.back().get();
}

void Material::Attribute::loadChunk(chunklib::ReadBuffer& buffer) {
    mName = loadName(buffer);
    while (const uint16_t id = buffer.openChunk()) {
        if (id == CHUNK_DEFAULT4) {
            loadValue(buffer, &mColor);
        } else if (id == CHUNK_TEXTURE) {
            try {
                auto texture = std::make_unique<Texture>();
                texture->loadChunk(buffer);
                mTextures.push_back(keepTexture(std::move(texture)));
            } catch (...) {
                // The texture is lost; what follows may still be readable.
            }
        } else {
            ZTK_LOG("warning", "o3d", "material-attribute: Unknown chunk with ID=0x%X\n", id);
        }
        buffer.closeChunk();
    }
}

void Material::Attribute::writeChunk(chunklib::WriteBuffer& buffer) const {
    buffer.openChunk(CHUNK_ATTRIBUTE);
    writeValue(buffer, mName);
    buffer.openChunk(CHUNK_DEFAULT4);
    writeValue(buffer, mColor);
    buffer.closeChunk();
    for (const Texture* texture : mTextures)
        texture->writeChunk(buffer);
    buffer.closeChunk();
}

// Material

Material::Material() {
    clear();
}

Material::~Material() {
    clear();
}

void Material::clear() {
    mName.clear();
    mFlag1 = false;
    mFlag2 = true;
    for (Attribute* attribute : mAttributes)
        delete attribute;
    mAttributes.clear();
}

void Material::loadChunk(chunklib::ReadBuffer& buffer) {
    mName = loadName(buffer);
    while (const uint16_t id = buffer.openChunk()) {
        switch (id) {
        case CHUNK_MATERIALFLAG1:
            loadFlag(buffer, mFlag1);
            break;
        case CHUNK_MATERIALFLAG2:
            loadFlag(buffer, mFlag2);
            break;
        case CHUNK_ATTRIBUTE:
            try {
                auto attribute = std::make_unique<Attribute>();
                attribute->loadChunk(buffer);
                mAttributes.push_back(attribute.get());
                attribute.release();
            } catch (...) {
                // The attribute is lost; what follows may still be readable.
            }
            break;
        default:
            ZTK_LOG("warning", "o3d", "Material:Unknown chunk with ID=0x%X\n", id);
            break;
        }
        buffer.closeChunk();
    }
}

void Material::writeChunk(chunklib::WriteBuffer& buffer) const {
    buffer.openChunk(CHUNK_MATERIAL);
    writeValue(buffer, mName);
    writeFlag(buffer, CHUNK_MATERIALFLAG1, mFlag1);
    writeFlag(buffer, CHUNK_MATERIALFLAG2, mFlag2);
    for (const Attribute* attribute : mAttributes)
        attribute->writeChunk(buffer);
    buffer.closeChunk();
}

} // namespace zentrak::o3d
