// The city at night, in two pictures: colours, and what of them glows; the fourth channel of both is the distance,
// 0 to 1. The kind of surface is in the texture coordinate u, in steps of 16 (make_city.cpp).
varying vec3 eyePosition;
varying vec3 normal;
varying vec3 up;
varying vec3 position;

uniform float znear, zfar, glowThresh;

float hash(vec2 p) {
    return fract(sin(dot(p, vec2(12.9898, 78.233))) * 43758.5453);
}

void main() {
    vec2 uv = gl_TexCoord[0].xy;
    int  kind = int(floor(uv.x / 16.0 + 0.5));
    vec2 plane = vec2(uv.x - 16.0 * float(kind), uv.y) * 4.0; // units of the mesh
    vec3 n = normalize(normal), toEye = normalize(-eyePosition), above = normalize(up);
    vec3 albedo = vec3(0.20, 0.24, 0.36), emission = vec3(0.0);
    float flat_ = abs(dot(n, above));

    if (kind == 1) { // a lantern
        emission = vec3(1.9, 1.05, 0.42) * (0.55 + 0.6 * max(0.0, dot(n, toEye)));
    } else if (kind == 2) { // gold
        float rim = pow(1.0 - max(0.0, dot(n, toEye)), 2.0);
        albedo = vec3(0.75, 0.48, 0.18);
        emission = vec3(0.95, 0.55, 0.20) * (0.15 + 0.8 * rim);
    } else if (kind == 3) { // streets, with lamps at the crossings
        vec2 street = abs(fract((position.xz - 1.5) / 3.0) - 0.5) * 3.0;
        float way = 1.0 - smoothstep(0.05, 0.5, 1.5 - max(street.x, street.y));
        albedo = vec3(0.09, 0.10, 0.16);
        emission = vec3(0.85, 0.42, 0.16) * way * 0.55;
    } else if (flat_ < 0.5) { // walls: a grid of windows, some lit
        vec2 cell = floor(plane / vec2(0.30, 0.42)), in_ = fract(plane / vec2(0.30, 0.42));
        vec2 pane = step(vec2(0.22, 0.25), in_) * step(in_, vec2(0.78, 0.80));
        float pick = hash(cell + floor(position.xz / 3.0 + 0.5) * 17.0);
        vec3 shine = pick > 0.92 ? vec3(0.55, 0.80, 1.15) : vec3(1.35, 0.80, 0.34) * (0.5 + pick);
        emission = pane.x * pane.y * (pick > 0.58 ? shine : vec3(0.02, 0.03, 0.06));
        albedo *= 1.0 - 0.6 * pane.x * pane.y;
        emission += vec3(0.55, 0.28, 0.12) * exp(-1.6 * position.y) * 0.5; // the light of the streets
    }

    vec3  toMoon = normalize(0.7 * above + vec3(0.5, 0.1, 0.25));
    vec3  light = vec3(0.52, 0.66, 0.95) * max(0.0, dot(n, toMoon)) + vec3(0.10, 0.12, 0.22);
    vec3  colour = (albedo * light + emission) * gl_Color.rgb;
    float range = (-eyePosition.z - znear) / (zfar - znear);
    colour = mix(colour, vec3(0.06, 0.09, 0.20), 0.85 * smoothstep(0.25, 1.0, range));
    float brightest = max(colour.r, max(colour.g, colour.b));
    gl_FragData[0] = vec4(colour, range);
    gl_FragData[1] = vec4(colour * smoothstep(0.75 * glowThresh, glowThresh + 0.5, brightest), range);
}
