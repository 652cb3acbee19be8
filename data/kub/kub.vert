// A cube of the picture: place and colour as they come. The colour's alpha is no opacity; it goes on unclamped.
varying vec4 colour;
varying vec3 eyePosition;

void main() {
    vec4 p = gl_ModelViewMatrix * gl_Vertex;
    colour = gl_Color;
    eyePosition = p.xyz;
    gl_TexCoord[0] = gl_MultiTexCoord0;
    gl_Position = gl_ProjectionMatrix * p;
}
