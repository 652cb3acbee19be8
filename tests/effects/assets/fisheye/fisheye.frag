// A lens over the picture: its middle comes nearer by `amount`, and `brus` strews grain over it that is new at
// every moment.
uniform sampler2D texture; // unit 0
uniform float     amount;  // 0: no lens
uniform float     second;
uniform float     brus; // 0: no grain

float grain(vec2 p) {
    return fract(sin(dot(p, vec2(12.9898, 78.233)) + second) * 43758.5453) - 0.5;
}

void main() {
    vec2  p = gl_TexCoord[0].xy * 2.0 - 1.0;
    float r = dot(p, p) * 0.5; // 1 in the corners
    vec2  at = p * (1.0 - amount * (1.0 - r) * 0.5);
    vec3  colour = texture2D(texture, at * 0.5 + 0.5).rgb;
    gl_FragColor = vec4(colour + brus * grain(floor(gl_FragCoord.xy)), 1.0);
}
