// A surface of the cartoon: what its tones are made of.
varying vec4 paint; // as given, above 1 too
varying vec3 normal;
varying vec3 eyePosition;

void main() {
    vec4 p = gl_ModelViewMatrix * gl_Vertex;
    paint = gl_Color;
    normal = gl_NormalMatrix * gl_Normal;
    eyePosition = p.xyz;
    gl_TexCoord[0] = gl_MultiTexCoord0;
    gl_Position = gl_ProjectionMatrix * p;
}
