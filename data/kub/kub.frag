// Shades a face by the shade texture and by where it looks, and lets the cubes come out of the haze as the span goes
// on.
uniform sampler2D shade; // unit 0
uniform float     alpha;

varying vec4 colour; // alpha: from just below 0 to 3 over the span
varying vec3 eyePosition;

void main() {
    vec3  normal = normalize(cross(dFdx(eyePosition), dFdy(eyePosition)));
    vec3  toEye = normalize(-eyePosition);
    float facing = abs(dot(normal, normalize(toEye + vec3(0.35, 0.45, 0.2))));
    float light = 0.42 + 0.68 * facing * facing;
    vec3  lit = colour.rgb * texture2D(shade, gl_TexCoord[0].xy).rgb * light;
    float rim = pow(1.0 - abs(dot(normal, toEye)), 4.0);
    lit += vec3(0.10, 0.12, 0.16) * rim;
    gl_FragColor = vec4(lit, alpha * clamp(0.35 + colour.a, 0.0, 1.0));
}
