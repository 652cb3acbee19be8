// A sprite that faces the camera: all four vertices are its centre, the texture coordinates say which corner each is,
// and the normal holds size and opacity. The lights flicker pink; here they glow like embers in blue smoke.
uniform vec3 cameraUp;    // half a unit long
uniform vec3 cameraRight; // half a unit long
uniform vec3 lpos0, lcol0;
uniform vec3 lpos1, lcol1;

varying vec4 colour;

vec3 light(vec3 position, vec3 lpos, vec3 lcol) {
    vec3 way = lpos - position;
    return vec3(1.0, 0.33, 0.12) * lcol.r * (3.2 / (1.0 + dot(way, way)));
}

void main() {
    vec2 corner = 2.0 * gl_MultiTexCoord0.xy - 1.0;
    vec3 position = gl_Vertex.xyz + 0.6 * gl_Normal.x * (corner.x * cameraRight + corner.y * cameraUp);
    float deep = length(gl_Vertex.xyz) / 12.3;
    vec3 smoke = mix(vec3(0.10, 0.16, 0.26), vec3(0.02, 0.04, 0.10), deep);
    colour = vec4(smoke + light(gl_Vertex.xyz, lpos0, lcol0) + light(gl_Vertex.xyz, lpos1, lcol1), min(1.0, 1.7 * gl_Normal.y));
    gl_TexCoord[0] = gl_MultiTexCoord0;
    gl_Position = gl_ModelViewProjectionMatrix * vec4(position, 1.0);
}
