// A Gaussian bell of 41 pixels in nine taps, which take neighbours in by filtering.
uniform sampler2D sourceTexture;

void main() {
    vec4  sum = vec4(0.0);
    float weights = 0.0;
    for (int i = -4; i <= 4; ++i) {
        float offset = 4.5 * float(i) / 512.0;
        float weight = exp(-0.14 * float(i * i));
        sum += weight * texture2D(sourceTexture, clamp(gl_TexCoord[0].xy + vec2(offset, 0.0), 0.001, 0.999));
        weights += weight;
    }
    gl_FragColor = sum / weights;
}
