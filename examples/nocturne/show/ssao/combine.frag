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
    vec2  cell = floor(at * 160.0);
    float star = fract(sin(dot(cell, vec2(41.3, 289.1))) * 15731.7);
    return colour + vec3(0.7, 0.8, 1.0) * smoothstep(0.992, 1.0, star) * (1.0 - length(fract(at * 160.0) - 0.5) * 1.6);
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
            hidden += smoothstep(0.05, 0.5, nearer) * (1.0 - smoothstep(radius, 3.0 * radius, nearer));
            way = mat2(-0.737369, 0.675490, -0.675490, -0.737369) * way; // on by the golden angle
        }
        colour = here.rgb * (1.0 - 0.75 * 0.333 * hidden);
    } else {
        colour = sky(at);
    }
    colour += glow * vec3(1.5, 1.2, 1.0);
    gl_FragColor = vec4(colour / (0.75 + 0.4 * colour) , 1.0);
}
