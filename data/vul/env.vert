// The sky alone, by direction.
varying vec3 direction;

void main() {
    direction = gl_Vertex.xyz;
    gl_Position = ftransform();
}
