// Two pictures in one pass: the colours, and of them what is brighter than the threshold; the fourth channel
// of both is the distance, from near to far 0 to 1. The kind of surface is in the texture coordinate u, in
// steps of 16.
varying vec3 eyePosition;
varying vec3 normal;
varying vec3 up;
varying vec3 position;

uniform float znear, zfar, glowThresh;

float noise(vec2 p) {
    return fract(sin(dot(floor(p), vec2(12.9898, 78.233))) * 43758.5453);
}

// 0 on a joint of a wall of stones of the size `size`, 1 on a stone; `stone` is its number.
float stones(vec2 p, vec2 size, out vec2 stone) {
    vec2 q = p / size;
    q.x += 0.5 * mod(floor(q.y), 2.0);
    stone = floor(q);
    vec2 edge = min(fract(q), 1.0 - fract(q)) * size;
    vec2 soft = fwidth(p) * 0.7 + 0.004;
    vec2 inside = smoothstep(vec2(0.02), vec2(0.02) + soft, edge);
    // What is too small to be seen is the mean.
    return mix(inside.x * inside.y, 0.9, smoothstep(0.1, 0.5, max(soft.x, soft.y) / min(size.x, size.y)));
}

void main() {
    vec2  uv = gl_TexCoord[0].xy;
    int   kind = int(floor(uv.x / 16.0 + 0.5));
    vec2  plane = vec2(uv.x - 16.0 * float(kind), uv.y) * 4.0; // units of the mesh
    vec3  n = normalize(normal), toEye = normalize(-eyePosition);
    vec3  albedo = vec3(0.62, 0.60, 0.58), shine = vec3(0.04);
    vec3  emission = vec3(0.0);
    float gloss = 12.0;
    vec3  above = normalize(up);
    vec2  stone;

    if (kind == 1) { // a lamp
        emission = vec3(1.5, 1.12, 0.70) * (0.6 + 0.6 * max(0.0, dot(n, toEye)));
        albedo = vec3(0.0);
    } else if (kind == 2) { // boards
        float board = stones(plane.yx, vec2(9.0, 0.25), stone);
        albedo = mix(vec3(0.42, 0.25, 0.12), vec3(0.56, 0.36, 0.19), noise(stone)) * (0.45 + 0.55 * board);
    } else if (kind == 3) { // glazed
        albedo = mix(vec3(0.10, 0.30, 0.34), vec3(0.16, 0.42, 0.42), 0.5 + 0.5 * position.y);
        shine = vec3(0.35);
        gloss = 40.0;
    } else if (kind == 4) { // brass; it turns, so that its own up is not the world's
        albedo = vec3(0.50, 0.33, 0.10);
        shine = vec3(0.95, 0.70, 0.30);
        gloss = 24.0;
        above = normalize(vec3(0.0, 0.94, 0.34));
    } else if (kind == 5) { // plain stone
        albedo = vec3(0.74, 0.70, 0.64);
    } else { // paving and walls
        float joint = stones(plane, position.y > 0.01 ? vec2(1.2, 0.45) : vec2(1.0, 1.0), stone);
        albedo = mix(vec3(0.44, 0.42, 0.42), vec3(0.60, 0.56, 0.52), noise(stone)) * (0.5 + 0.5 * joint);
    }

    // A low sun that stays to the right of the camera, the sky, and what the ground throws back.
    vec3  right = normalize(vec3(1.0, 0.0, 0.0) - above * above.x);
    vec3  toSun = normalize(0.75 * above + 0.62 * right + 0.35 * cross(right, above));
    float sun = max(0.0, dot(n, toSun));
    float sky = 0.5 + 0.5 * dot(n, above);
    vec3  light = vec3(1.00, 0.78, 0.56) * sun * 0.85 + mix(vec3(0.16, 0.13, 0.13), vec3(0.34, 0.42, 0.58), sky);
    float mirror = pow(max(0.0, dot(n, normalize(toSun + toEye))), gloss);
    vec3  colour = albedo * light + shine * mirror * vec3(1.0, 0.85, 0.65) + emission;
    colour *= gl_Color.rgb;

    float range = (-eyePosition.z - znear) / (zfar - znear);
    float brightest = max(colour.r, max(colour.g, colour.b));
    vec3  glow = colour * smoothstep(glowThresh, glowThresh + 0.6, brightest);
    gl_FragData[0] = vec4(colour, range);
    gl_FragData[1] = vec4(glow, range);
}
