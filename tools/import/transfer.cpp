#include "import/transfer.h"

#include <cstring>
#include <stdexcept>
#include <type_traits>

namespace zentrak::importer {

namespace {

class Writer {
public:
    template <class... T>
    void operator()(T&... values) {
        (put(values), ...);
    }
    std::string mBytes;

private:
    void bytes(const void* data, size_t size) { mBytes.append(static_cast<const char*>(data), size); }
    void put(std::string& text) {
        size_t size = text.size();
        bytes(&size, sizeof size);
        bytes(text.data(), size);
    }
    template <class T>
    void put(std::vector<T>& list) {
        size_t size = list.size();
        bytes(&size, sizeof size);
        if constexpr (std::is_trivially_copyable_v<T>)
            bytes(list.data(), size * sizeof(T));
        else
            for (T& element : list)
                put(element);
    }
    template <class T>
    void put(T& value) {
        if constexpr (std::is_trivially_copyable_v<T>)
            bytes(&value, sizeof value);
        else
            fields(*this, value);
    }
};

class Reader {
public:
    explicit Reader(const std::string& bytes) : mBytes(bytes) {}
    template <class... T>
    void operator()(T&... values) {
        (get(values), ...);
    }

private:
    const char* take(size_t size) {
        if (size > mBytes.size() - mPosition)
            throw std::runtime_error("the reading process ended too early");
        const char* const start = mBytes.data() + mPosition;
        mPosition += size;
        return start;
    }
    size_t takeSize() {
        size_t size = 0;
        memcpy(&size, take(sizeof size), sizeof size);
        if (size > mBytes.size())
            throw std::runtime_error("the reading process ended too early");
        return size;
    }
    void get(std::string& text) {
        const size_t size = takeSize();
        text.assign(take(size), size);
    }
    template <class T>
    void get(std::vector<T>& list) {
        list.resize(takeSize());
        if constexpr (std::is_trivially_copyable_v<T>) {
            const char* const start = take(list.size() * sizeof(T));
            if (!list.empty())
                memcpy(static_cast<void*>(list.data()), start, list.size() * sizeof(T));
        } else {
            for (T& element : list)
                get(element);
        }
    }
    template <class T>
    void get(T& value) {
        if constexpr (std::is_trivially_copyable_v<T>)
            memcpy(static_cast<void*>(&value), take(sizeof value), sizeof value);
        else
            fields(*this, value);
    }

    const std::string& mBytes;
    size_t mPosition = 0;
};

template <class S>
void fields(S& s, Part& p) {
    s(p.name, p.material, p.positions, p.normals, p.texCoords, p.triangles, p.points, p.lines, p.badTriangles,
      p.bones, p.morphs, p.texCoordSets, p.colors, p.depthCoords);
}

template <class S>
void fields(S& s, Node& n) {
    s(n.name, n.parent, n.matrix, n.parts);
}

template <class S>
void fields(S& s, TextureUse& t) {
    s(t.kind, t.file);
}

template <class S>
void fields(S& s, ColorUse& c) {
    s(c.kind, c.rgba);
}

template <class S>
void fields(S& s, Surface& f) {
    s(f.name, f.colors, f.textures);
}

template <class S>
void fields(S& s, CameraData& c) {
    s(c.name, c.position, c.direction, c.up, c.angle, c.orthographic);
}

template <class S>
void fields(S& s, LightData& l) {
    s(l.name, l.position, l.direction, l.color, l.angle, l.ambient);
}

template <class S>
void fields(S& s, Channel& c) {
    s(c.node, c.positions, c.scales, c.rotations, c.before, c.after, c.disordered, c.curved);
}

template <class S>
void fields(S& s, Animation& a) {
    s(a.name, a.length, a.channels, a.others);
}

template <class S>
void fields(S& s, Model& m) {
    s(m.format, m.name, m.unit, m.axes, m.nodes, m.parts, m.surfaces, m.cameras, m.lights, m.animations,
      m.warnings);
}

bool isWhole(const Part& part) {
    const size_t count = part.positions.size();
    for (const auto& triangle : part.triangles)
        for (const uint32_t vertex : triangle)
            if (vertex >= count)
                return false;
    return (part.normals.empty() || part.normals.size() == count) &&
           (part.texCoords.empty() || part.texCoords.size() == count);
}

// Whether all indices are within range. The process that sent the model ran a library on an untrusted file.
bool isWhole(const Model& model) {
    for (size_t i = 0; i < model.nodes.size(); ++i) {
        const Node& node = model.nodes[i];
        if (node.parent < -1 || node.parent >= int64_t(i))
            return false;
        for (const uint32_t part : node.parts)
            if (part >= model.parts.size())
                return false;
    }
    for (const Part& part : model.parts)
        if (!isWhole(part))
            return false;
    return true;
}

} // namespace

std::string toBytes(Model& model) {
    Writer writer;
    writer(model);
    return std::move(writer.mBytes);
}

Model fromBytes(const std::string& bytes) {
    Model model;
    Reader reader(bytes);
    reader(model);
    if (!isWhole(model))
        throw std::runtime_error("the reading process sent invalid data");
    return model;
}

} // namespace zentrak::importer
