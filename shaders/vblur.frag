#version 120

// One half of a separable Gaussian blur (sigma 2.0 texels, 11 taps) along the columns;
// the other half runs the same kernel along the other axis. Weights sum to 1, so an even
// image stays as it is.
uniform sampler2D texture;
// Distance between neighbouring texels along the columns, in texture coordinates
// (1 / the texture's height); 0 leaves the image unblurred.
uniform float texelSize;

void main()
{
    vec2 st = gl_TexCoord[0].st;
    vec2 offset = vec2(0.0, texelSize);
    vec4 sum = texture2D(texture, st) * 0.20056541;
    sum += (texture2D(texture, st + offset * 1.0) + texture2D(texture, st - offset * 1.0)) * 0.17699836;
    sum += (texture2D(texture, st + offset * 2.0) + texture2D(texture, st - offset * 2.0)) * 0.12164907;
    sum += (texture2D(texture, st + offset * 3.0) + texture2D(texture, st - offset * 3.0)) * 0.06511406;
    sum += (texture2D(texture, st + offset * 4.0) + texture2D(texture, st - offset * 4.0)) * 0.02714358;
    sum += (texture2D(texture, st + offset * 5.0) + texture2D(texture, st - offset * 5.0)) * 0.00881223;
    gl_FragColor = sum * gl_Color;
}
