// A sprite that faces the camera: all four vertices are its middle, and the texture coordinates say which corner
// each is. The normal holds the size and the opacity.
uniform vec3 cameraUp;    // half a unit long
uniform vec3 cameraRight; // half a unit long
uniform vec3 lpos0, lcol0;
uniform vec3 lpos1, lcol1;

varying vec4 colour;

vec3 light(vec3 position, vec3 lpos, vec3 lcol) {
    vec3 way = lpos - position;
    return lcol * (6.0 / (1.0 + dot(way, way)));
}

void main() {
    vec2 corner = 2.0 * gl_MultiTexCoord0.xy - 1.0;
    vec3 position = gl_Vertex.xyz + gl_Normal.x * (corner.x * cameraRight + corner.y * cameraUp);
    float deep = length(gl_Vertex.xyz) / 12.3;
    vec3 dust = mix(vec3(0.16, 0.10, 0.22), vec3(0.03, 0.06, 0.14), deep);
    colour = vec4(dust + light(gl_Vertex.xyz, lpos0, lcol0) + light(gl_Vertex.xyz, lpos1, lcol1), gl_Normal.y);
    gl_TexCoord[0] = gl_MultiTexCoord0;
    gl_Position = gl_ModelViewProjectionMatrix * vec4(position, 1.0);
}
