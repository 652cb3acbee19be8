// The quad over the screen as it comes.
void main() {
    gl_TexCoord[0] = gl_MultiTexCoord0;
    gl_Position = ftransform();
}
// Satin: the picture as cloth. Folds run across it, calm down over the first ten seconds and stay as a sheen; the
// bright parts smear along the thread, and a fine weave catches the light.
uniform sampler2D picture; // unit 0
uniform vec3      satin;   // (1, m, m), m from 10 down to 0
uniform float     maxx;    // of the window, pixels
uniform float     maxy;

// The height of the cloth; `wind` is 0 when it lies still.
float cloth(vec2 p, float wind) {
    float a = p.x * 1.9 + p.y * 3.3;
    float b = p.x * 2.7 - p.y * 1.2;
    return sin(a * 2.0 + 0.9 * sin(b * 1.7 + wind * 2.1) + wind * 1.7) + 0.45 * sin(b * 3.1 - a + wind * 2.9);
}

void main() {
    vec2  uv = gl_TexCoord[0].xy;
    float unrest = satin.y * 0.1;
    vec2  p = (uv - 0.5) * vec2(maxx / maxy, 1.0);

    // The slope of the folds, by differences.
    float h = cloth(p, satin.z);
    vec2  slope = vec2(cloth(p + vec2(0.01, 0.0), satin.z) - h, cloth(p + vec2(0.0, 0.01), satin.z) - h) * 100.0;

    // The folds bend the picture, and the three colours not quite alike.
    vec2  at = uv + slope * (0.0012 + 0.010 * unrest * unrest);
    vec2  split = slope * (0.0004 + 0.0022 * unrest);
    vec3  colour = vec3(texture2D(picture, at - split).r, texture2D(picture, at).g, texture2D(picture, at + split).b);

    // Light that runs along the thread.
    vec2  thread = vec2(6.0 / maxx, 2.0 / maxy);
    vec3  glow = texture2D(picture, at + thread).rgb + texture2D(picture, at - thread).rgb +
                 texture2D(picture, at + thread * 2.6).rgb + texture2D(picture, at - thread * 2.6).rgb;
    glow *= 0.25;
    colour = mix(colour, max(colour, glow), 0.6) + glow * glow * 0.35;

    // Sheen: bright where the cloth turns to a light at the upper left.
    vec3  normal = normalize(vec3(-slope * 0.16, 1.0));
    float shine = pow(max(0.0, dot(normal, normalize(vec3(-0.35, 0.55, 0.75)))), 18.0);
    vec3  tint = mix(vec3(1.0, 0.86, 0.72), vec3(0.74, 0.82, 1.0), uv.y);
    colour = colour * (0.86 + 0.14 * h) + tint * shine * (0.05 + 0.16 * unrest + 0.35 * dot(glow, vec3(0.3, 0.59, 0.11)));

    // The weave, two pixels a thread, and darker towards the edge of the picture.
    vec2  px = floor(uv * vec2(maxx, maxy) * 0.5);
    colour *= 0.965 + 0.035 * mod(px.x + px.y, 2.0);
    colour *= 1.0 - 0.45 * dot(p, p);

    gl_FragColor = vec4(colour, 1.0);
}
