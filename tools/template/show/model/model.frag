// Lit by a warm light from the upper left and a cold one from the right.
varying vec3 normal;

void main() {
    vec3 n = normalize(normal);
    vec3 light = vec3(0.12, 0.10, 0.16) + max(0.0, dot(n, vec3(-0.48, 0.64, 0.6))) * vec3(1.0, 0.8, 0.6) +
                 max(0.0, dot(n, vec3(0.8, 0.0, 0.6))) * vec3(0.2, 0.3, 0.5);
    gl_FragColor = vec4(light * gl_Color.rgb, 1.0);
}
