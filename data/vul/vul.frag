uniform sampler2D   texture;
uniform samplerCube environment;

varying vec3 worldNormal;

void main() {
    vec3 base = gl_Color.rgb * texture2D(texture, gl_TexCoord[0].xy).rgb;
    vec3 sky = textureCube(environment, worldNormal).rgb;
    gl_FragColor = vec4(mix(base, sky, 0.35), gl_Color.a);
}
