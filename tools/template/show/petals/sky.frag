// From night blue above to a warm horizon, with slow bands of light.
uniform float time;
uniform float light;

varying vec2 place;

void main() {
    float up = 0.5 + 0.5 * place.y;
    vec3 color = mix(vec3(0.36, 0.13, 0.26), vec3(0.03, 0.04, 0.14), smoothstep(0.0, 0.9, up));
    float band = sin(3.0 * place.x + 0.5 * time + 2.0 * sin(2.0 * place.y + 0.3 * time));
    color += vec3(0.10, 0.05, 0.12) * band * band * (1.0 - up);
    color *= 1.0 - 0.35 * dot(place, place) * 0.5;
    gl_FragColor = vec4(color * light, 1.0);
}
