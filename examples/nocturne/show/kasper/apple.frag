// Loaded with every scene; the city is not drawn with it.
void main() {
    gl_FragColor = vec4(1.0);
}
