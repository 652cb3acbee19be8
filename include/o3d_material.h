// Surfaces as the exporter wrote them. Only the name of a Material matters: nothing else of it is used for
// drawing.
#pragma once

#include "o3d_value.h"

#include <string>
#include <vector>

namespace zentrak::o3d {

class Texture {
public:
    void clear();
    // Reads the chunk that is open, or writes the whole chunk; so with all classes here.
    void loadChunk(chunklib::ReadBuffer& buffer);
    void writeChunk(chunklib::WriteBuffer& buffer) const;

    std::string mName;
    std::string mImageName; // of an Image of the same Manager
    int mValue = 0;         // 0 to 255; its meaning is the exporter's
};

class Image {
public:
    void clear();
    void loadChunk(chunklib::ReadBuffer& buffer);
    void writeChunk(chunklib::WriteBuffer& buffer) const;

    std::string mName;
    std::string mFileName; // never opened
};

class Material {
public:
    class Attribute {
    public:
        void loadChunk(chunklib::ReadBuffer& buffer);
        void writeChunk(chunklib::WriteBuffer& buffer) const;

        std::string mName;
        Vector4f mColor{0.0f, 0.0f, 0.0f, 0.0f}; // red, green, blue, alpha
        std::vector<Texture*> mTextures;         // those from a file live until the process ends
    };

    Material();
    ~Material();
    Material(const Material&) = delete;
    Material& operator=(const Material&) = delete;

    void clear();
    void loadChunk(chunklib::ReadBuffer& buffer);
    void writeChunk(chunklib::WriteBuffer& buffer) const;

    std::vector<Attribute*> mAttributes; // owned
    std::string mName;
    bool mFlag1; // meanings are the exporter's
    bool mFlag2;
};

} // namespace zentrak::o3d
