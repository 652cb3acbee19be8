// Lights a block by a lamp at the camera, in the show's palette: the effect's pale first rings become deep teal, its
// full colours paper, orange and teal.
varying vec4 colour;
varying vec3 eyePosition;

const vec3 deep = vec3(0.045, 0.170, 0.190);
const vec3 paper = vec3(0.965, 0.945, 0.900);
const vec3 orange = vec3(0.960, 0.400, 0.090);
const vec3 teal = vec3(0.020, 0.520, 0.530);

void main() {
    float high = max(colour.r, max(colour.g, colour.b));
    vec3  base = mix(deep, paper, smoothstep(0.66, 0.82, high));
    base = mix(base, orange, smoothstep(0.10, 0.21, colour.r - colour.b));
    base = mix(base, teal, smoothstep(0.085, 0.12, colour.b - colour.r));

    vec3  normal = normalize(cross(dFdx(eyePosition), dFdy(eyePosition)));
    float range = length(eyePosition);
    float lamp = abs(dot(normal, eyePosition / range));
    float fall = 1.0 / (1.0 + 0.004 * range * range);
    vec3  lit = base * (0.30 + 1.00 * lamp * fall);
    lit += paper * 0.22 * pow(lamp, 12.0) * fall * (0.2 + high);
    lit += base * vec3(0.30, 0.32, 0.36) * 0.4 * max(0.0, normal.y);
    gl_FragColor = vec4(lit, colour.a);
}
