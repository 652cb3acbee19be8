// The scene as the light sees it: its frame's z is the distance along the light.
varying float range;

void main() {
    vec4 p = gl_ModelViewMatrix * gl_Vertex;
    range = p.z;
    gl_Position = gl_ProjectionMatrix * p;
}
