// Boxes with a texture and the sky on their faces.
varying vec3 worldNormal;

void main() {
    worldNormal = gl_Normal;
    gl_FrontColor = gl_Color;
    gl_TexCoord[0] = gl_MultiTexCoord0;
    gl_Position = ftransform();
}
