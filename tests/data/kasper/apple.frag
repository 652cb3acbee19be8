// The skin of an apple: red to green around it, with a small shine.
varying vec3 normal;
varying vec3 eyePosition;

void main() {
    vec3  n = normalize(normal), toEye = normalize(-eyePosition);
    float lamp = max(0.0, dot(n, toEye));
    vec3  skin = mix(vec3(0.75, 0.08, 0.05), vec3(0.45, 0.55, 0.10), smoothstep(0.1, 0.9, n.y));
    gl_FragColor = vec4(gl_Color.rgb * (skin * (0.15 + 0.85 * lamp) + 0.5 * pow(lamp, 40.0)), gl_Color.a);
}
