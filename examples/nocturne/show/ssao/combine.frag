// The city before its sky, darker in corners, with the glow over it. A distance of 0 is where nothing was drawn.
uniform sampler2D texture0, texture1, texture1_blur;
uniform float     znear, zfar;

const float radius = 0.9; // of the occlusion, units of the scene

float rangeAt(vec2 at) {
    float d = texture2D(texture0, at).a;
    return d > 0.0 ? znear + d * (zfar - znear) : 2.0 * zfar;
}

vec3 sky(vec2 at) {
    vec3  colour = mix(vec3(0.20, 0.13, 0.22), vec3(0.02, 0.03, 0.10), smoothstep(0.35, 0.95, at.y));
    vec2  inside = fract(at * 160.0);
    vec2  cell = fract((at * 160.0 - inside) * vec2(0.1031, 0.1137));
    float pick = fract(cell.x * cell.y * 333.3 + 7.7 * (cell.x + cell.y));
    vec2  off = inside - 0.5;
    return colour + vec3(0.7, 0.8, 1.0) * (pick > 0.994 ? max(0.0, 1.0 - 4.0 * dot(off, off)) : 0.0);
}

void main() {
    vec2 at = gl_TexCoord[0].xy;
    if (abs(at.y - 0.5) > 0.405) // under the bars
        discard;
    vec4 here = texture2D(texture0, at);
    vec3 glow = texture2D(texture1_blur, 0.5 * min(at, 0.998)).rgb;
    vec3 colour;
    if (here.a > 0.0) {
        float range = rangeAt(at);
        vec2  reach = 0.5 * radius * vec2(gl_ProjectionMatrix[0][0], gl_ProjectionMatrix[1][1]) / range;
        float turn = 6.2831853 * fract(52.9829189 * fract(dot(floor(gl_FragCoord.xy), vec2(0.06711056, 0.00583715))));
        vec2  way = vec2(cos(turn), sin(turn));
        float hidden = 0.0;
        for (int i = 0; i < 3; ++i) {
            float nearer = range - rangeAt(at + reach * (0.33 * float(i) + 0.2) * way);
            hidden += clamp(2.2 * nearer - 0.1, 0.0, 1.0) * clamp(1.5 - 0.5 * nearer / radius, 0.0, 1.0);
            way = mat2(-0.737369, 0.675490, -0.675490, -0.737369) * way; // on by the golden angle
        }
        colour = here.rgb * (1.0 - 0.75 * 0.333 * hidden);
    } else {
        colour = sky(at);
    }
    colour += glow * vec3(1.5, 1.2, 1.0);
    gl_FragColor = vec4(colour / (0.75 + 0.4 * colour) , 1.0);
}
