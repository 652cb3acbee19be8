// Lights a block by a lamp at the camera, with a cool fill from behind, and lets it sink into the dark ahead.
varying vec4 colour;
varying vec3 eyePosition;

void main() {
    vec3  normal = normalize(cross(dFdx(eyePosition), dFdy(eyePosition)));
    float range = length(eyePosition);
    vec3  toEye = -eyePosition / range;
    float lamp = abs(dot(normal, toEye));
    float fall = 1.0 / (1.0 + 0.004 * range * range);
    vec3  lit = colour.rgb * (0.18 + 1.05 * lamp * fall);
    lit += vec3(1.0, 0.93, 0.8) * 0.35 * pow(lamp, 12.0) * fall;
    lit += colour.rgb * vec3(0.25, 0.35, 0.5) * 0.4 * max(0.0, normal.y);
    gl_FragColor = vec4(lit, colour.a);
}
