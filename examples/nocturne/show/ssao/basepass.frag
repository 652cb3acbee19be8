// The city at night, in two pictures: colours, and what of them glows; the fourth channel of both is the distance,
// 0 to 1.
varying vec3  light, emission;
varying vec2  windows, block;
varying vec3  position;
varying vec2  kind;
varying float range;

uniform float glowThresh;

float hash(vec2 p) {
    vec2 q = fract(p * vec2(0.1031, 0.1137));
    q += dot(q, q.yx + 33.33);
    return fract((q.x + q.y) * q.x);
}

void main() {
    // Walls: a grid of windows, some lit, and the light of the streets below.
    vec2  cell = floor(windows), at = fract(windows);
    vec2  pane = step(vec2(0.22, 0.25), at) * step(at, vec2(0.78, 0.80));
    float glass = pane.x * pane.y * kind.x;
    float pick = hash(cell + floor(block + 0.5) * 17.0);
    vec3  shine = pick > 0.92 ? vec3(0.55, 0.80, 1.15) : vec3(1.35, 0.80, 0.34) * (0.5 + pick);
    float low = max(0.0, 1.0 - 0.4 * position.y);
    vec3  glow = emission + glass * (pick > 0.58 ? shine : vec3(0.02, 0.03, 0.06)) +
                kind.x * low * low * vec3(0.27, 0.14, 0.06);

    // Streets, with lamps at the crossings.
    vec2 street = abs(fract((position.xz - 1.5) / 3.0) - 0.5) * 3.0;
    glow += kind.y * (1.0 - smoothstep(0.05, 0.5, 1.5 - max(street.x, street.y))) * vec3(0.47, 0.23, 0.09);

    vec3 colour = light * (1.0 - 0.6 * glass) + glow;
    colour = mix(colour, vec3(0.06, 0.09, 0.20), 0.85 * smoothstep(0.25, 1.0, range));
    float brightest = max(colour.r, max(colour.g, colour.b));
    gl_FragData[0] = vec4(colour, range);
    gl_FragData[1] = vec4(colour * smoothstep(0.75 * glowThresh, glowThresh + 0.5, brightest), range);
}
