// A block of a ring: place and colour as they come.
varying vec4 colour;
varying vec3 eyePosition;

void main() {
    vec4 p = gl_ModelViewMatrix * gl_Vertex;
    colour = gl_Color;
    eyePosition = p.xyz;
    gl_Position = gl_ProjectionMatrix * p;
}
