// The same upward, from the quarter that blurX has drawn.
uniform sampler2D sourceTexture;

void main() {
    if (abs(gl_TexCoord[0].y - 0.5) > 0.42)
        discard;
    vec4  sum = vec4(0.0);
    float weights = 0.0;
    for (int i = -2; i <= 2; ++i) {
        float offset = 5.0 * float(i) / 512.0;
        float weight = exp(-0.35 * float(i * i));
        sum += weight * texture2D(sourceTexture, 0.5 * clamp(gl_TexCoord[0].xy + vec2(0.0, offset), 0.001, 0.999));
        weights += weight;
    }
    gl_FragColor = sum / weights;
}
