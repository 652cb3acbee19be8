#version 120
// Stone in the sun: the colours of its picture, by the normals of the height map. The alpha is for the alpha test.
uniform sampler2D texture; // unit 0
uniform sampler2D height;  // unit 1: normals, 127 n + 127, and the height in alpha

varying vec3 toLight;
varying vec3 toEye;
varying vec3 toSky;

void main() {
    vec4 stone = texture2D(texture, gl_TexCoord[0].xy);
    vec4 relief = texture2D(height, gl_TexCoord[0].xy);
    vec3 normal = normalize((relief.xyz * 255.0 - 127.0) / 127.0 * vec3(1.6, 1.6, 1.0));
    vec3 light = normalize(toLight);
    vec3 eye = normalize(toEye);

    float sun = max(dot(normal, light), 0.0) * smoothstep(-0.1, 0.25, light.z);
    float sky = 0.5 + 0.5 * dot(normal, normalize(toSky));
    float shine = pow(max(dot(normal, normalize(light + eye)), 0.0), 36.0) * sun;
    float hollow = 0.45 + 0.55 * relief.a;
    vec3  lit = stone.rgb * (vec3(1.55, 1.42, 1.2) * sun + mix(vec3(0.10, 0.13, 0.34), vec3(0.42, 0.46, 0.56), sky) * hollow);
    lit += vec3(0.5, 0.47, 0.4) * shine * relief.a;
    float rim = pow(1.0 - max(eye.z, 0.0), 3.0);
    lit += vec3(0.18, 0.24, 0.45) * rim * sky;
    gl_FragColor = vec4(lit, stone.a);
}
