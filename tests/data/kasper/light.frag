// The distance from the near to the far one as 0 to 1 in red, and its square in green: both may be averaged,
// and tell mean and variance then. Blue is 0 where there is something.
varying float range;
uniform float light_znear, light_zfar;

void main() {
    float depth = clamp((range - light_znear) / (light_zfar - light_znear), 0.0, 1.0);
    gl_FragColor = vec4(depth, depth * depth, 0.0, 1.0);
}
