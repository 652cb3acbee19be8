// A cube of the picture: place and colour as they come. An alpha above 1 enlarges the picture by as much.
uniform float alpha;

varying vec4 colour;
varying vec3 eyePosition;

void main() {
    vec4 p = gl_ModelViewMatrix * gl_Vertex;
    colour = gl_Color;
    eyePosition = p.xyz;
    gl_TexCoord[0] = gl_MultiTexCoord0;
    gl_Position = gl_ProjectionMatrix * p;
    if (alpha > 1.0) {
        gl_Position.xy *= alpha;
        gl_Position.z = 0.5 * (gl_Position.z - gl_Position.w); // above the floor, which is not enlarged
    }
}
