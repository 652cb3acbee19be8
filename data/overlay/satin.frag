// What the eye sees: the target in the show's palette, behind its lids.
//
// Greys become ink to paper, warm colours orange and all others teal. The lids are as far open as the target is opaque
// in two of its corners: the alpha of a `clear` with the gradient opens and closes them, a flat one in a colour that
// leaves alpha at 1 (white, cubejox_black, cubejox_orange) holds them open. With the start of its span the picture
// jumps towards the viewer and settles in a second.
uniform sampler2D picture; // unit 0
uniform vec3      satin;   // (1, m, m), m from 10 down to 0 in ten seconds
uniform float     maxx;    // of the window, pixels
uniform float     maxy;

const vec3 ink = vec3(0.045, 0.047, 0.055);
const vec3 paper = vec3(0.965, 0.945, 0.900);
const vec3 orange = vec3(0.945, 0.420, 0.110);
const vec3 teal = vec3(0.020, 0.500, 0.510);

vec3 grade(vec3 c) {
    float high = max(c.r, max(c.g, c.b));
    float low = min(c.r, min(c.g, c.b));
    float saturation = clamp(1.7 * (high - low) / max(high, 0.05), 0.0, 1.0);
    float warm = smoothstep(-0.04, 0.06, c.r - 0.92 * max(c.g, c.b));
    vec3  accent = mix(teal, orange, warm);
    vec3  lit = mix(ink, accent, smoothstep(0.0, 0.6, high));
    return mix(mix(ink, paper, dot(c, vec3(0.30, 0.59, 0.11))), lit, saturation);
}

// 0 behind a lid, 1 in the open, by where it is: -1 to 1 from edge to edge.
float lids(vec2 p, float open) {
    float span = 1.0 - 0.62 * p.x * p.x;
    float reach = 2.75 * open * open * (3.0 - 2.0 * open) + 0.1 * open;
    float low = -0.20 * (1.0 - open) * span;
    float upper = low + 0.62 * reach * span - 0.04;
    float lower = low - 0.50 * reach * span + 0.04;
    float soft = 0.02 + 0.10 * open;
    return smoothstep(upper + soft, upper - soft, p.y) * smoothstep(lower - soft, lower + soft, p.y) *
           smoothstep(0.0, 0.08, open);
}

void main() {
    vec2  uv = gl_TexCoord[0].xy;
    vec2  p = 2.0 * uv - 1.0;
    float jump = max(0.0, satin.y - 9.0);
    // What passes over a corner changes its alpha a little.
    float opaque = min(texture2D(picture, vec2(0.01, 0.99)).a, texture2D(picture, vec2(0.99, 0.01)).a);
    float open = min(1.0, sqrt(opaque) / 0.85);

    // The paper is as transparent as the lids are shut; behind them it keeps most of its light.
    vec3 colour = grade(texture2D(picture, uv - 0.035 * jump * jump * p).rgb / mix(0.12, 1.0, open));
    colour *= 1.0 + 0.25 * jump * jump * jump - 0.15 * dot(p, p) * (1.6 - 0.6 * open);
    if (open < 1.0) {
        float lit = lids(p, open);
        colour = mix(ink, colour, lit) + 1.2 * orange * lit * (1.0 - lit) * (1.0 - open);
    }
    gl_FragColor = vec4(colour, 1.0);
}
