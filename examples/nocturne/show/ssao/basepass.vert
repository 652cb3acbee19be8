// What the first pass works with, in the camera's frame.
varying vec3 eyePosition;
varying vec3 normal;
varying vec3 up;       // the mesh's own, the world's for all that stands upright
varying vec3 position; // of the mesh

void main() {
    vec4 p = gl_ModelViewMatrix * gl_Vertex;
    eyePosition = p.xyz;
    normal = gl_NormalMatrix * gl_Normal;
    up = gl_NormalMatrix * vec3(0.0, 1.0, 0.0);
    position = gl_Vertex.xyz;
    gl_FrontColor = gl_Color;
    gl_TexCoord[0] = gl_MultiTexCoord0;
    gl_Position = gl_ProjectionMatrix * p;
}
