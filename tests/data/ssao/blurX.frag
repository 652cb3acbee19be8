// One row of a Gaussian bell, all four channels. Each tap lies between two pixels and takes both.
uniform sampler2D sourceTexture;

const float size = 512.0; // of the target, pixels
const float sigma = 11.0; // pixels

void main() {
    vec4  sum = vec4(0.0);
    float weights = 0.0;
    for (int i = -14; i < 14; ++i) {
        float offset = 2.0 * float(i) + 0.5;
        float weight = exp(-offset * offset / (2.0 * sigma * sigma));
        vec2  at = gl_TexCoord[0].xy + vec2(offset, 0.0) / size;
        sum += weight * texture2D(sourceTexture, clamp(at, 0.5 / size, 1.0 - 0.5 / size));
        weights += weight;
    }
    gl_FragColor = sum / weights;
}
