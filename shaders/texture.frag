#version 120

// The texel times the interpolated vertex colour, as GL_MODULATE does.
uniform sampler2D texture;

void main()
{
    gl_FragColor = texture2D(texture, gl_TexCoord[0].st) * gl_Color;
}
