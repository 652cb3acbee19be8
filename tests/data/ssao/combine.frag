// The picture: the colours in the light that reaches them, and the glow over it. A distance of 0 is where
// nothing was drawn.
uniform sampler2D texture0, texture1, texture1_blur;
uniform float     znear, zfar;

const float size = 512.0;  // of the targets, pixels
const float radius = 1.1;  // of the occlusion, units of the scene
const int   samples = 22;

vec4 texel(vec2 at) {
    return texture2D(texture0, (floor(clamp(at, 0.0, 0.9999) * size) + 0.5) / size);
}

float rangeOf(float d) {
    return d > 0.0 ? znear + d * (zfar - znear) : 2.0 * zfar;
}

// The place in the camera's frame that the picture shows at `at`; the projection of the scene is undone.
vec3 placeAt(vec2 at, float range) {
    vec2 p = (2.0 * at - 1.0) / vec2(gl_ProjectionMatrix[0][0], gl_ProjectionMatrix[1][1]);
    return vec3(p, -1.0) * range;
}
vec3 placeAt(vec2 at) {
    return placeAt(at, rangeOf(texel(at).a));
}

vec3 sky(vec2 at) {
    vec3 low = mix(vec3(0.86, 0.47, 0.27), vec3(0.42, 0.27, 0.36), smoothstep(0.40, 0.68, at.y));
    return mix(low, vec3(0.06, 0.08, 0.20), smoothstep(0.55, 1.05, at.y));
}

// One pixel of the first pass, with the sky behind it and the haze before it.
vec3 shown(vec2 at) {
    vec4 t = texel(at);
    return t.a > 0.0 ? mix(t.rgb, vec3(0.38, 0.27, 0.28), 0.45 * smoothstep(0.3, 1.0, t.a)) : sky(at);
}

// Filtered, which the texture itself is not where the sky begins.
vec3 filtered(vec2 at) {
    vec2 p = at * size - 0.5, f = fract(p), c = (floor(p) + 0.5) / size;
    vec2 dx = vec2(1.0 / size, 0.0), dy = dx.yx;
    return mix(mix(shown(c), shown(c + dx), f.x), mix(shown(c + dy), shown(c + dx + dy), f.x), f.y);
}

float luma(vec3 c) {
    return dot(c, vec3(0.3, 0.59, 0.11));
}

// The colours with the steps of edges smoothed along them.
vec3 smoothed(vec2 at) {
    vec2  d = vec2(0.6 / size);
    float sw = luma(shown(at - d)), ne = luma(shown(at + d));
    float se = luma(shown(at + vec2(d.x, -d.y))), nw = luma(shown(at + vec2(-d.x, d.y)));
    vec2  along = vec2((sw + se) - (nw + ne), (sw + nw) - (se + ne));
    float most = max(max(sw, ne), max(se, nw)), least = min(min(sw, ne), min(se, nw));
    if (most - least < 0.04)
        return filtered(at);
    along = clamp(along.xy / (min(abs(along.x), abs(along.y)) + 0.02), -3.0, 3.0) / size;
    along.x = -along.x;
    vec3 narrow = 0.5 * (filtered(at - along / 6.0) + filtered(at + along / 6.0));
    vec3 wide = 0.5 * narrow + 0.25 * (filtered(at - along / 2.0) + filtered(at + along / 2.0));
    float l = luma(wide);
    return l < least || l > most ? narrow : wide;
}

// Of two ways to a neighbour the one that stays on the surface.
vec3 nearer(vec3 a, vec3 b) {
    return abs(a.z) < abs(b.z) ? a : b;
}

// The share of the half space over the surface that nothing near hides.
float openness(vec2 at, vec3 p, vec3 n) {
    vec2  reach = 0.5 * radius * vec2(gl_ProjectionMatrix[0][0], gl_ProjectionMatrix[1][1]) / -p.z;
    float turn = 6.2831853 * fract(52.9829189 * fract(dot(floor(gl_FragCoord.xy), vec2(0.06711056, 0.00583715))));
    float hidden = 0.0;
    for (int i = 0; i < samples; ++i) {
        float share = (float(i) + 0.5) / float(samples);
        float angle = 2.3999632 * float(i) + turn;
        vec3  way = placeAt(at + reach * share * vec2(cos(angle), sin(angle))) - p;
        float square = dot(way, way);
        float fade = max(0.0, 1.0 - square / (radius * radius));
        hidden += max(0.0, dot(way, n) - 0.006 * -p.z) / (square + 0.03) * fade;
    }
    return clamp(1.0 - 1.1 * radius * hidden / float(samples), 0.0, 1.0);
}

void main() {
    vec2  at = gl_TexCoord[0].xy;
    vec4  soft = texture2D(texture1_blur, at);
    vec4  bright = texture2D(texture1, at);
    vec3  colour = smoothed(at);
    float here = texel(at).a;
    if (here > 0.0) {
        // On a surface the filtered distance, at an edge that of the pixel.
        float between = texture2D(texture0, at).a;
        bool  edge = abs(between - here) > 0.004 * here;
        vec2  centre = edge ? (floor(at * size) + 0.5) / size : at;
        vec3  p = placeAt(centre, rangeOf(edge ? here : between));
        vec2  dx = vec2(1.0 / size, 0.0), dy = dx.yx, c = (floor(at * size) + 0.5) / size;
        vec3  q = placeAt(c);
        vec3  right = nearer(placeAt(c + dx) - q, q - placeAt(c - dx));
        vec3  above = nearer(placeAt(c + dy) - q, q - placeAt(c - dy));
        float open = openness(centre, p, normalize(cross(right, above)));
        // What lies behind its surroundings gets less light too, over a wide reach.
        float behind = clamp((bright.a - soft.a) * (zfar - znear) * 0.12, 0.0, 0.35);
        colour *= mix(vec3(0.08, 0.07, 0.12), vec3(1.0), open * (1.0 - behind));
        colour += colour * soft.rgb * vec3(1.0, 0.7, 0.4) * 3.0;
    }
    colour += soft.rgb * vec3(1.0, 0.62, 0.28) * 2.6;
    vec2 corner = at - 0.5;
    colour *= 1.0 - 0.6 * dot(corner, corner);
    gl_FragColor = vec4(colour, 1.0);
}
