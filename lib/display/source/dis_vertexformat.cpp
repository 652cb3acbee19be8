#include "dis_vertexformat.h"

namespace zentrak::display {

constexpr VertexDef::CHANNEL NONE = VertexDef::NONE;

constinit const VertexDef VertexP2::format(VertexDef::T_2F);
constinit const VertexDef VertexP3::format(VertexDef::T_3F);
constinit const VertexDef VertexP3N3::format(VertexDef::T_3F, VertexDef::T_3F);
constinit const VertexDef VertexP3N3T2::format(VertexDef::T_3F, VertexDef::T_3F, NONE, VertexDef::T_2F);
constinit const VertexDef VertexP3C4b::format(VertexDef::T_3F, NONE, VertexDef::T_4B_U);
constinit const VertexDef VertexP3N3T2A4A4::format(VertexDef::T_3F, VertexDef::T_3F, NONE, VertexDef::T_2F,
                                                   NONE, VertexDef::T_4f, VertexDef::T_4f);

static_assert(sizeof(VertexP2) == 8 && sizeof(VertexP3) == 12 && sizeof(VertexP3N3) == 24 &&
              sizeof(VertexP3N3T2) == 32 && sizeof(VertexP3C4b) == 16 && sizeof(VertexP3N3T2A4A4) == 64);

} // namespace zentrak::display
