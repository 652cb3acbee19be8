// The source colour is multiplied with the picture twice over: 0.5 leaves it as it is.
uniform float light; // 0 black, 1 as it is
uniform vec3  tint;

varying vec2 place;

void main() {
    float corner = 1.0 - 0.45 * dot(place * vec2(0.8, 0.9), place * vec2(0.8, 0.9));
    float bar = 1.0 - smoothstep(0.795, 0.80, abs(place.y));
    gl_FragColor = vec4(0.5 * tint * max(corner, 0.0) * bar * light, 1.0);
}
