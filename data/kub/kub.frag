// Shades a face by the shade texture and by where it looks. What is far away sinks into a haze of paper.
uniform sampler2D shade; // unit 0
uniform float     alpha;

varying vec4 colour;
varying vec3 eyePosition;

const vec3 paper = vec3(0.965, 0.945, 0.900);

void main() {
    vec3  normal = normalize(cross(dFdx(eyePosition), dFdy(eyePosition)));
    vec3  toEye = normalize(-eyePosition);
    float facing = abs(dot(normal, normalize(toEye + vec3(0.35, 0.45, 0.2))));
    float light = 0.52 + 0.62 * facing * facing;
    vec3  lit = colour.rgb * texture2D(shade, gl_TexCoord[0].xy).rgb * light;
    lit = mix(lit, paper, 0.8 * smoothstep(45.0, 600.0, length(eyePosition)));
    gl_FragColor = vec4(lit, min(alpha, 1.0));
}
