#version 120
// Light and eye as the surface sees them: along its tangent, its binormal and its normal.
attribute vec4 tangent0_vs;
attribute vec4 tangent1_vs;

varying vec3 toLight;
varying vec3 toEye;
varying vec3 toSky; // straight up on the screen

void main() {
    vec3 position = vec3(gl_ModelViewMatrix * gl_Vertex);
    mat3 surface = mat3(normalize(gl_NormalMatrix * tangent0_vs.xyz), normalize(gl_NormalMatrix * tangent1_vs.xyz),
                        normalize(gl_NormalMatrix * gl_Normal));
    toLight = vec3(-0.55, 0.62, 0.56) * surface; // over the left shoulder
    toEye = normalize(-position) * surface;
    toSky = vec3(0.0, 1.0, 0.0) * surface;
    gl_TexCoord[0] = gl_MultiTexCoord0;
    gl_Position = gl_ProjectionMatrix * vec4(position, 1.0);
}
