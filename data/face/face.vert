// A point of light: its colour and the place in its sprite.
varying vec4 color;

void main() {
    color = gl_Color;
    gl_TexCoord[0] = gl_MultiTexCoord0;
    gl_Position = ftransform();
}
