#version 120

// Bright pass: keeps the part of a colour whose luminance rises above THRESHOLD.
// A colour at the threshold or darker becomes black, white stays white, and in between
// the colour keeps its hue, scaled by how far its luminance reaches past the threshold.
uniform sampler2D texture;

const float THRESHOLD = 0.60;
const vec3 LUMINANCE = vec3(0.2126, 0.7152, 0.0722);

void main()
{
    vec4 texel = texture2D(texture, gl_TexCoord[0].st) * gl_Color;
    float luminance = dot(texel.rgb, LUMINANCE);
    float kept = max(luminance - THRESHOLD, 0.0) / (1.0 - THRESHOLD);
    gl_FragColor = vec4(texel.rgb * kept, texel.a);
}
