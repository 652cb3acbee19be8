// A cube of the picture, in the show's palette: the blueish greys of the effect's `expand` become ink and paper, the
// gold of `turn` orange, the green of `turn2` teal. An alpha above 1 enlarges the picture by as much.
uniform float alpha;

varying vec4 colour;
varying vec3 eyePosition;

const vec3 ink = vec3(0.045, 0.047, 0.055);
const vec3 paper = vec3(0.965, 0.945, 0.900);
const vec3 orange = vec3(0.945, 0.420, 0.110);
const vec3 teal = vec3(0.020, 0.500, 0.510);

// From ink over `accent` to paper.
vec3 ramp(vec3 accent, float light) {
    return mix(mix(ink, accent, smoothstep(0.0, 0.55, light)), paper, smoothstep(0.55, 1.0, light));
}

vec3 grade(vec3 c) {
    float red = max(c.r, 0.01);
    vec2  steps = (c.rg - c.gb) / red; // down from red to green, and from green to blue
    float grey = 1.0 - smoothstep(0.03, 0.10, abs(steps.x));
    float gold = smoothstep(0.15, 0.22, steps.x) * (1.0 - smoothstep(0.04, 0.10, abs(steps.x - steps.y)));
    float green = smoothstep(0.3, 0.45, -steps.x) * smoothstep(0.3, 0.45, steps.y);
    float blue = c.b;
    c.b = min(c.b, c.g); // what `expand` turns mauve or navy on its way to grey
    c = mix(c, mix(ink, paper, c.r), grey);
    c = mix(c, ramp(orange, blue * 1.1), gold);
    return mix(c, ramp(teal, blue * 1.6), green);
}

void main() {
    vec4 p = gl_ModelViewMatrix * gl_Vertex;
    colour = vec4(grade(gl_Color.rgb), gl_Color.a);
    eyePosition = p.xyz;
    gl_TexCoord[0] = gl_MultiTexCoord0;
    gl_Position = gl_ProjectionMatrix * p;
    if (alpha > 1.0) {
        gl_Position.xy *= alpha;
        gl_Position.z = 0.5 * (gl_Position.z - gl_Position.w); // above the floor, which is not enlarged
    }
}
