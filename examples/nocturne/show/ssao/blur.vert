// A quarter of the target, its lower left: what is blurred needs no more than half the resolution.
void main() {
    gl_TexCoord[0] = gl_MultiTexCoord0;
    gl_Position = vec4(0.5 * gl_Vertex.xy - 0.5, 0.0, 1.0);
}
