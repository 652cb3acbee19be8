// Loaded with every scene; the city is not drawn with it.
void main() {
    gl_Position = ftransform();
}
