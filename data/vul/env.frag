uniform samplerCube environment;

varying vec3 direction;

void main() {
    gl_FragColor = vec4(textureCube(environment, direction).rgb, 1.0);
}
