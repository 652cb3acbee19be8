// Flat tones: four of the paint by the light, cooler in the shade, and paler with the distance, each with a
// hard edge. The texture coordinate u tells the kind of surface: above 12 stained glass, above 24 a lamp,
// below -4 the floor, below -26 wood.
varying vec4 paint;
varying vec3 normal;
varying vec3 eyePosition;

const vec3 light = vec3(-0.45, 0.66, 0.6); // from over the left shoulder

vec2 hash(vec2 cell) {
    return fract(sin(vec2(dot(cell, vec2(127.1, 311.7)), dot(cell, vec2(269.5, 183.3)))) * 43758.5453);
}

// Shards of glass in lead.
vec3 glass(vec2 p) {
    vec2  cell = floor(p), owner = cell;
    float first = 8.0, second = 8.0;
    for (int y = -1; y <= 1; ++y)
        for (int x = -1; x <= 1; ++x) {
            vec2  c = cell + vec2(float(x), float(y));
            vec2  d = c + 0.15 + 0.7 * hash(c) - p;
            float range = dot(d, d);
            if (range < first) {
                second = first;
                first = range;
                owner = c;
            } else
                second = min(second, range);
        }
    float pick = hash(owner + 7.0).x;
    vec3  shard = pick < 0.22   ? vec3(1.00, 0.80, 0.22)
                  : pick < 0.42 ? vec3(0.93, 0.27, 0.20)
                  : pick < 0.64 ? vec3(0.15, 0.42, 0.86)
                  : pick < 0.80 ? vec3(0.20, 0.68, 0.48)
                  : pick < 0.90 ? vec3(0.55, 0.26, 0.70)
                                : vec3(0.98, 0.95, 0.82);
    float lead = smoothstep(0.03, 0.07, sqrt(second) - sqrt(first));
    return mix(vec3(0.05, 0.04, 0.08), shard, lead);
}

// A step that is one pixel wide.
float step1(float edge, float f) {
    float soft = 0.7 * fwidth(f) + 1e-5;
    return smoothstep(edge - soft, edge + soft, f);
}

void main() {
    vec2 uv = gl_TexCoord[0].xy;
    if (uv.x > 12.0 && uv.x < 24.0) {
        gl_FragColor = vec4(glass(uv * 2.5), 1.0);
        return;
    }
    vec3 hue = paint.rgb / max(paint.r, max(paint.g, paint.b));
    if (uv.x > 24.0)
        hue = vec3(1.0, 0.80, 0.24);
    else if (uv.x < -26.0) // wood: the other side of the wheel, and dark
        hue = vec3(1.15, 1.05, 1.0) * (max(hue.r, max(hue.g, hue.b)) + min(hue.r, min(hue.g, hue.b)) - hue) * 0.62;
    else if (uv.x < -4.0) { // the floor: tiles of two tones
        vec2 tile = fract(0.5 * uv) - 0.5;
        hue *= mix(0.62, 0.98, step1(0.0, tile.x * tile.y));
    }
    float lit = dot(normalize(normal), normalize(light));
    vec3  tone = mix(hue * vec3(0.30, 0.24, 0.46), hue * vec3(0.60, 0.54, 0.72), step1(-0.35, lit));
    tone = mix(tone, hue * vec3(0.86, 0.83, 0.88), step1(0.10, lit));
    tone = mix(tone, mix(hue, vec3(1.0), 0.3), step1(0.55, lit));
    float away = clamp(floor((-eyePosition.z - 30.0) / 24.0) * 0.09, 0.0, 0.4);
    gl_FragColor = vec4(mix(tone, vec3(1.0, 0.93, 0.78), away), 1.0);
}
