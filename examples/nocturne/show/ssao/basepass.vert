// What the first pass works with. What changes little over a surface is computed here and not for each pixel. The kind
// of surface is in the texture coordinate u, in steps of 16 (make_city.cpp).
uniform float znear, zfar;

varying vec3  light;    // of the moon and the sky, times the surface's own colour
varying vec3  emission; // of lanterns and gold
varying vec2  windows;  // of a tower, counted from its edge
varying vec2  block;    // of the city, constant over a tower
varying vec3  position; // of the mesh
varying vec2  kind;     // x: 1 on a wall; y: 1 on the streets
varying float range;    // distance, 0 to 1

void main() {
    vec4  p = gl_ModelViewMatrix * gl_Vertex;
    vec3  n = normalize(gl_NormalMatrix * gl_Normal);
    vec3  above = normalize(gl_NormalMatrix * vec3(0.0, 1.0, 0.0));
    float facing = max(0.0, dot(n, normalize(-p.xyz)));
    float surface = floor(gl_MultiTexCoord0.x / 16.0 + 0.5);
    vec3  albedo = vec3(0.20, 0.24, 0.36);

    emission = vec3(0.0);
    kind = vec2(0.0);
    if (surface == 1.0) { // a lantern
        emission = vec3(1.9, 1.05, 0.42) * (0.55 + 0.6 * facing);
    } else if (surface == 2.0) { // gold
        albedo = vec3(0.75, 0.48, 0.18);
        emission = vec3(0.95, 0.55, 0.20) * (0.15 + 0.8 * (1.0 - facing) * (1.0 - facing));
    } else if (surface == 3.0) {
        albedo = vec3(0.09, 0.10, 0.16);
        kind.y = 1.0;
    } else if (abs(dot(n, above)) < 0.5) {
        kind.x = 1.0;
    }

    vec3 toMoon = normalize(0.7 * above + vec3(0.5, 0.1, 0.25));
    light = albedo * (vec3(0.52, 0.66, 0.95) * max(0.0, dot(n, toMoon)) + vec3(0.10, 0.12, 0.22));
    windows = vec2(gl_MultiTexCoord0.x - 16.0 * surface, gl_MultiTexCoord0.y) * vec2(4.0 / 0.30, 4.0 / 0.42);
    position = gl_Vertex.xyz;
    block = floor(gl_Vertex.xz / 3.0 + 0.5);
    range = (-p.z - znear) / (zfar - znear);
    gl_Position = gl_ProjectionMatrix * p;
}
