// The whole picture: the corners are in clip space. The projection is that of the scene.
void main() {
    gl_TexCoord[0] = gl_MultiTexCoord0;
    gl_Position = gl_Vertex;
}
