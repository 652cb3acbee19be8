// A surface by a lamp at the eye.
varying vec3 normal;
varying vec3 eyePosition;

void main() {
    vec4 p = gl_ModelViewMatrix * gl_Vertex;
    normal = gl_NormalMatrix * gl_Normal;
    eyePosition = p.xyz;
    gl_FrontColor = gl_Color;
    gl_Position = gl_ProjectionMatrix * p;
}
