// A cathedral as a woodcut by lamplight: three flat tones of blue and gold, hatched in the shade. The texture
// coordinate u says the kind of surface: above 12 glass, above 24 a lamp, below -4 the floor.
varying vec4 paint;
varying vec3 normal;
varying vec3 eyePosition;

const vec3 light = vec3(-0.45, 0.66, 0.6);

void main() {
    vec2  uv = gl_TexCoord[0].xy;
    float beat = paint.r * 0.5; // swings slowly
    if (uv.x > 24.0) {
        gl_FragColor = vec4(1.0, 0.86, 0.50, 1.0);
        return;
    }
    if (uv.x > 12.0) { // panes, warm from within
        vec2  pane = fract(uv * 2.0);
        float lead = step(0.10, pane.x) * step(0.10, pane.y);
        float pick = fract(sin(dot(floor(uv * 2.0), vec2(12.9898, 78.233))) * 43758.5453);
        vec3  glass = pick > 0.6 ? vec3(1.0, 0.72, 0.28) : pick > 0.3 ? vec3(0.93, 0.45, 0.20) : vec3(0.36, 0.58, 0.80);
        gl_FragColor = vec4(glass * (0.35 + 0.65 * lead), 1.0);
        return;
    }
    float lit = dot(normalize(normal), normalize(light));
    float away = clamp((-eyePosition.z - 20.0) / 110.0, 0.0, 1.0);
    vec3  tone = lit > 0.50 ? vec3(0.94, 0.70, 0.36) : lit > 0.05 ? vec3(0.52, 0.36, 0.34) : vec3(0.14, 0.16, 0.32);
    if (uv.x < -4.0 && uv.x > -26.0) { // tiles
        vec2 tile = fract(0.5 * uv) - 0.5;
        tone *= tile.x * tile.y > 0.0 ? 1.0 : 0.6;
    }
    float hatch = step(0.5, fract((gl_FragCoord.x + gl_FragCoord.y) * 0.16));
    if (lit <= 0.05)
        tone *= 0.75 + 0.35 * hatch;
    tone = mix(tone, vec3(0.98, 0.62, 0.28), away * (0.35 + 0.25 * beat));
    gl_FragColor = vec4(tone, 1.0);
}
